#include "project/line_comparison.h"

#include "map/module_access.h"
#include "project/find_modules.h"
#include "project/saved_config.h"

#include <algorithm>

namespace kavro {

namespace {

ShownValue Shown(const NamedSetting& setting, const SettingValue& value) {
    return {value, setting.Value() == value ? SettingText(setting) : ValueText(value)};
}

// Before the modules of the file are read, which takes the list away.
std::vector<Contact> ContactsBeside(const Session& session, const LineFile& file) {
    std::vector<Contact> contacts;
    for (int index = 0; index < session.ModuleCount; ++index)
        if (!ModuleIn(file, session.ModuleTable[index].Address))
            contacts.push_back(ContactOfEntry(session, index));
    return contacts;
}

} // namespace

ModuleComparison Compared(const SavedModule& file, const ModuleReading& line) {
    ModuleComparison comparison{file, line};
    if (line.Is != Presence::Answers || comparison.OtherModel())
        return comparison;
    comparison.Differences = DifferencesBetween(file, line.Module);
    for (const SavedSetting& saved : file.Settings)
        if (!SettingIn(line.Module, saved.Name))
            comparison.Untold.push_back(saved.Name);
    return comparison;
}

bool LineComparison::Same() const {
    return New.empty() && std::ranges::all_of(Modules, &ModuleComparison::Same);
}

bool LineComparison::Answered() const {
    return !New.empty() || std::ranges::any_of(Modules, [](const ModuleComparison& each) {
        return each.Line.Is != Presence::Silent;
    });
}

LineComparison CompareLine(const LineWork& work, const LineFile& file) {
    const std::vector<Contact> beside = ContactsBeside(work.Session, file);
    const std::vector<ModuleReading> readings = ReadSavedModules(work, file.Modules);
    LineComparison comparison;
    for (std::size_t i = 0; i < readings.size(); ++i)
        comparison.Modules.push_back(Compared(file.Modules[i], readings[i]));
    for (std::size_t i = 0; i < beside.size(); ++i) {
        work.Progress("Looking for modules that the file does not have", static_cast<int>(i),
                      static_cast<int>(beside.size()));
        ModuleReading reading = ReadModuleAt(work.Session, beside[i], work.Tell.Words);
        if (reading.Is == Presence::Answers)
            comparison.New.push_back(std::move(reading.Module));
    }
    return comparison;
}

std::vector<LineDifference> DifferencesBetween(const SavedModule& file, const SavedModule& line) {
    const NamedConfig wanted = ConfigOf(file), present = ConfigOf(line);
    std::vector<LineDifference> differences;
    for (const SavedSetting& saved : file.Settings) {
        const SettingValue* const value = SettingIn(line, saved.Name);
        const NamedSetting *const left = FindSetting(wanted, saved.Name), *const right = FindSetting(
                                                                              present, saved.Name);
        if (!value || !left || *value == saved.Value)
            continue;
        const bool taken = left->Value() == saved.Value && right->Value() == *value;
        if (!taken || !SameValue(*left, *right))
            differences.push_back({saved.Name, Shown(*left, saved.Value), Shown(*right, *value), left->When});
    }
    return differences;
}

std::vector<LineDifference> AllDifferences(const SavedModule& file, const SavedModule& line) {
    std::vector<LineDifference> differences = DifferencesBetween(file, line);
    const auto shown = [](std::int16_t address) {
        return ShownValue{static_cast<double>(address), ShownAddress(address)};
    };
    if (file.Address != line.Address)
        differences.insert(differences.begin(),
                           {"address", shown(file.Address), shown(line.Address), Writable::Initialising});
    return differences;
}

} // namespace kavro
