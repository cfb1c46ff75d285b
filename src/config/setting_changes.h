#pragma once

#include "config/config_names.h"

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// The setting with that name, in whatever case; null when the module has none.
const NamedSetting* FindSetting(const NamedConfig& config, std::string_view name);
NamedSetting* FindSetting(NamedConfig& config, std::string_view name);

/// The same. Throws `RuntimeFailure` with the names that there are.
NamedSetting& SettingNamed(NamedConfig& config, const std::string& name);

/// A setting and the value that it is to have.
struct Assignment {
    std::string Name;
    std::string Value;
};

/// Gives settings their new values; nothing is sent. Returns the names of those that differ now. Throws
/// `RuntimeFailure` for an unknown name, for a value that does not fit, and for a setting that cannot be
/// changed as the module is, all changes made.
std::vector<std::string> MakeChanges(NamedConfig& config, const std::vector<Assignment>& changes);

/// Gives a setting a value of the kind that its own has. Throws `RuntimeFailure` when it does not fit; the
/// setting may then have changed.
void TakeValue(NamedSetting& setting, const SettingValue& value);

/// A value, and how it is shown.
struct ShownValue {
    SettingValue Value;
    std::string Text;
};

/// A setting that a module has otherwise than it should.
struct SettingDifference {
    std::string Name;
    ShownValue Wanted, Present;
};

/// Whether two modules have settings of the same names.
bool SameNames(const NamedConfig& left, const NamedConfig& right);

/// What differs for the module, in the order in which settings are shown. Both have the same names.
std::vector<SettingDifference> Differences(const NamedConfig& wanted, const NamedConfig& present);

} // namespace kavro
