#pragma once

#include "config/setting_changes.h"
#include "map/session.h"

#include <string>
#include <vector>

namespace kavro {

/// The modules that the session knows; to be kept before `FindModule`, which leaves one of them.
std::vector<ModuleRecord> ModulesOfList(const Session& session);

/// Why the settings of the selected entry, of which those named in `changed` differ from the module's, are
/// hardly meant: an address that one of the modules `known` has or at which something answers, or a low alarm
/// limit above the high one. Empty when nothing speaks against them. Throws `RuntimeFailure` when the port
/// fails.
std::string DoubtAbout(Session& session, const NamedConfig& config, const std::vector<std::string>& changed,
                       const std::vector<ModuleRecord>& known);

} // namespace kavro
