#pragma once

#include "config/config_names.h"
#include "config/setting_changes.h"
#include "map/module_contact.h"

#include <optional>
#include <vector>

namespace kavro {

/// The settings of the module at a contact, which becomes the only and selected entry of the session.
/// Nothing, with the reason told, when no module with settings answers, or it does not tell all of them.
/// Throws `RuntimeFailure` when the port fails, as all of these do.
std::optional<NamedConfig> ReadConfig(Session& session, const Contact& contact, const Teller& tell);

/// One of these two functions.
using ConfigReader = std::optional<NamedConfig>(Session& session, const Contact& contact, const Teller& tell);

/// The same of any module, be it without a configuration, that may not tell everything: `Writable`, `Known`,
/// and `Told` of each setting, say what it did.
std::optional<NamedConfig> ReadToldConfig(Session& session, const Contact& contact, const Teller& tell);

/// The same as the module tells it twice alike: for what is written back, as one digit of a reply may be
/// wrong and still make sense.
std::optional<NamedConfig> ReadConfigTwice(Session& session, const Contact& contact, const Teller& tell,
                                           ConfigReader* read = ReadConfig);

/// Writes the settings of the selected entry as the module's dialog does, and tells what that tells.
ConfigOutcome WriteConfig(Session& session, const NamedConfig& config, Messages& messages);

/// What the module that was written has otherwise than it should, wherever it answers now. Nothing, with
/// the reason told, when that cannot be read back.
std::optional<std::vector<SettingDifference>> NotTaken(Session& session, const NamedConfig& wanted,
                                                       const Teller& tell);

/// Whether there is nothing that the module has otherwise; tells what there is.
bool HasTaken(Session& session, const NamedConfig& wanted, const Teller& tell);

} // namespace kavro
