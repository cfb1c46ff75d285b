#pragma once

#include "config/config_commands.h"
#include "config/named_settings.h"
#include "link/messages.h"
#include "map/identify.h"
#include "map/session.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// The settings of one module, by name. Hold on to the session.
struct NamedConfig {
    std::vector<NamedSetting> Settings;                     ///< in the order in which they are shown
    bool Known = false;                                     ///< the module has told every one of them
    std::function<ConfigOutcome(Messages& messages)> Apply; ///< writes them, as the module's dialog does
    bool Writable = true;                                   ///< false of a model without a configuration
};

/// The settings of the selected entry, which was identified like that; what a search does not read is read
/// from the module now. Of a model without a configuration what every module has, which cannot be written.
NamedConfig ReadNamedConfig(Session& session, Identified identified);

/// The settings of a model, of no module: for looking at what they are and what they can be. What every
/// module has of a model without a configuration. All can be given that its modules take in their
/// initialisation state.
NamedConfig BlankConfig(const std::string& model);

/// The names of every family's settings and what can be given for each, one line each under the family's
/// models.
std::string SettingsHelp();

/// The names of every family's settings, each once.
std::vector<std::string> SettingNames();

} // namespace kavro
