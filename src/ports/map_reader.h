#pragma once

#include "map/module_map.h"

#include <string>

namespace kavro {

/// The modules of a map: one that `kavroctl search --json` printed, of each module "address" and "baudCode"
/// at least, a map as text (`ReadMapText`), or a line file, whose tags are shown when it is taken over.
/// Throws `RuntimeFailure` when the file cannot be used.
ModuleMap ReadMapFile(const std::string& path);

} // namespace kavro
