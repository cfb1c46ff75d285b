#pragma once

#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// A finished search as it is printed.
struct PrintedMap {
    std::string Device;                           ///< of the current port, UTF-8
    bool Complete = false;                        ///< the search, or the refresh, went to its end
    std::optional<std::int16_t> HighestAddress{}; ///< searched; nothing after a refresh
};

/// The module list under its heading, each line as in the main window and what is amiss behind it.
std::string MapText(const Session& session);

/// The module list as a JSON object: port, device, range and all that is needed to speak to each module.
/// Like the list it tells the settings that a module reports; one with "initialisation" is spoken to at
/// address 00, 9600 baud, without checksum instead.
std::string MapJson(const Session& session, const PrintedMap& map);

} // namespace kavro
