#pragma once

#include "traffic/traffic_text.h"

#include <optional>
#include <string>

namespace kavro {

/// Which rows are shown.
struct TrafficFilter {
    std::optional<int> Address; ///< of the command, 0 to 255; nothing: of whatever address, or none
    bool OnlyFailed = false;    ///< all that is not a whole reply, refusals, and stray characters
    std::string Text; ///< in the bytes as they are shown or in the words, in either case; may be empty
};

/// Whether a row is shown.
bool Passes(const TrafficFilter& filter, const TrafficRow& row, const KnownModules& known, bool hex);

} // namespace kavro
