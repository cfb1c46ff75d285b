#pragma once

#include "map/module_map.h"

#include <string>

namespace kavro {

/// The modules of a map that `kavroctl search --json` printed. Of each module "address" and "baudCode" must
/// stand there; the rest may be left out. Throws `RuntimeFailure` when the file cannot be used.
ModuleMap ReadMapFile(const std::string& path);

} // namespace kavro
