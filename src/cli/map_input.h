#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Fills the session's `ModuleTable`, `ModuleCount` and `ScanIndex` from a map that `kavroctl search --json`
/// printed. Of each module "address" and "baudCode" must stand there; the rest may be left out. Throws
/// `RuntimeFailure` when the file cannot be used, with the session unchanged.
void ReadMap(Session& session, const std::string& path);

} // namespace kavro
