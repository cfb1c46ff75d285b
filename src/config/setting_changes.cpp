#include "config/setting_changes.h"

#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kavro {

namespace {

// A value as it is shown is always taken, even one that could not be chosen: it changes nothing.
bool Change(NamedSetting& setting, const std::string& text) {
    const SettingValue before = setting.Value();
    if (!SameText(text, SettingText(setting)))
        setting.Take(text);
    return setting.Value() != before;
}

} // namespace

const NamedSetting* FindSetting(const NamedConfig& config, std::string_view name) {
    const auto found = std::ranges::find_if(
        config.Settings, [&](const NamedSetting& setting) { return SameText(setting.Name, name); });
    return found == config.Settings.end() ? nullptr : &*found;
}

NamedSetting* FindSetting(NamedConfig& config, std::string_view name) {
    return const_cast<NamedSetting*>(FindSetting(std::as_const(config), name));
}

NamedSetting& SettingNamed(NamedConfig& config, const std::string& name) {
    if (NamedSetting* const setting = FindSetting(config, name))
        return *setting;
    std::vector<std::string> names;
    std::ranges::transform(config.Settings, std::back_inserter(names), &NamedSetting::Name);
    throw RuntimeFailure("This module has no setting '" + name + "'; it has " + Listed(names) + ".");
}

// What is locked may depend on the other changes, so it is asked when all are made.
std::vector<std::string> MakeChanges(NamedConfig& config, const std::vector<Assignment>& changes) {
    std::vector<const NamedSetting*> changed;
    for (const Assignment& change : changes) {
        NamedSetting& setting = SettingNamed(config, change.Name);
        if (Change(setting, change.Value))
            changed.push_back(&setting);
    }
    std::vector<std::string> names;
    for (const NamedSetting* setting : changed) {
        if (const std::string reason = setting->Locked(); !reason.empty())
            throw RuntimeFailure("The " + setting->Name + " " + reason + ".");
        names.push_back(setting->Name);
    }
    return names;
}

void TakeValue(NamedSetting& setting, const SettingValue& value) {
    if (value == setting.Value())
        return; // one that could not be chosen, perhaps
    setting.Take(ValueText(value));
    // The number 10 is not the range code 10, which is hexadecimal.
    if (setting.Value().index() != value.index())
        throw RuntimeFailure("'" + ValueText(value) + "' does not fit " + setting.Name + "; give " +
                             setting.Values + ".");
}

bool SameNames(const NamedConfig& left, const NamedConfig& right) {
    return std::ranges::equal(left.Settings, right.Settings, {}, &NamedSetting::Name, &NamedSetting::Name);
}

std::vector<SettingDifference> Differences(const NamedConfig& wanted, const NamedConfig& present) {
    const auto shown = [](const NamedSetting& setting) {
        return ShownValue{setting.Value(), SettingText(setting)};
    };
    std::vector<SettingDifference> differences;
    for (std::size_t i = 0; i < wanted.Settings.size(); ++i) {
        const NamedSetting &left = wanted.Settings[i], &right = present.Settings.at(i);
        if (!SameValue(left, right))
            differences.push_back({left.Name, shown(left), shown(right)});
    }
    return differences;
}

} // namespace kavro
