#pragma once

#include "traffic/line_check.h"

#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What a line check concludes.
struct LineFinding {
    std::string Finding; ///< "module-silent", "line-silent", "double-address", "damaged", "refused", "slow",
                         ///< "foreign" or "echo"
    std::optional<int> Address; ///< of the module, 0 to 255; nothing: it is the whole line's
    std::string Text;           ///< what was seen, and what to do
};

/// The conclusions from what was counted; none when all is good. One cause gives one finding.
std::vector<LineFinding> FindingsOf(const LineCheckResult& result);

} // namespace kavro
