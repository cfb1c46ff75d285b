#pragma once

#include "map/module_map.h"

#include <string_view>

namespace kavro {

/// The modules of a map as text: a file that `WriteMapFile` wrote, or the list that `kavroctl search`
/// printed. It does not tell which modules use checksums, nor their alarms and counters. Throws
/// `RuntimeFailure` when the text is something else; the description begins with a small letter, to follow on
/// the file's name.
ModuleMap ReadMapText(std::string_view text);

} // namespace kavro
