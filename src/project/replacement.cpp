#include "project/replacement.h"

#include "link/baud.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_dispatch.h"
#include "project/find_modules.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::int16_t InitialisationAddress = 0;

bool IsOfLink(const std::string& name) {
    return name == "baud" || name == "checksum";
}

void RunAsItIs(int /*address*/, const std::function<void()>& write) {
    write();
}

// How the module will be spoken to stays as it is.
SavedModule WithoutLink(SavedModule wanted, const SavedModule& present) {
    wanted.Address = present.Address;
    std::erase_if(wanted.Settings, [](const SavedSetting& setting) { return IsOfLink(setting.Name); });
    return wanted;
}

ModuleReading ReadInitialising(const LineWork& work) {
    return ReadModuleAt(work.Session, ContactOf(work.Session, InitialisationAddress), work.Tell.Words);
}

} // namespace

std::string NotReplaceable(const SavedModule& saved) {
    const std::string the = "The " + ShownModule(saved);
    if (saved.Address == InitialisationAddress)
        return the + " cannot be replaced from the file: at address 0 it could not be told from a module in "
                     "its initialisation state.";
    if (DispatchModel(saved.Model, 0, Operation::Configuration).Dialog == ModuleDialog::None)
        return the + " has no settings that can be written. Set the new one by hand.";
    if (!SettingIn(saved, "baud") || !SettingIn(saved, "checksum"))
        return the + " cannot be replaced from the file, which does not tell how it is spoken to: it had "
                     "not answered when the line was backed up. Set the new one by hand.";
    return {};
}

std::string KeptSettings(const SavedModule& saved) {
    std::vector<std::string> names;
    for (const NamedSetting& setting : BlankConfig(saved.Model).Settings)
        if (setting.When != Writable::Never && setting.Name != "address" && !SettingIn(saved, setting.Name))
            names.push_back(setting.Name);
    if (names.empty())
        return {};
    return "The file does not tell " + Listed(names) + " of the " + ShownModule(saved) +
           "; there the new module keeps what it has.";
}

std::string PlaceTaken(const LineWork& work, const SavedModule& saved) {
    const ModuleReading reading = ReadSavedModules(work, {saved}).front();
    const bool there = reading.Is != Presence::Silent && reading.Way.Address != InitialisationAddress;
    if (!there)
        return {};
    const std::string what =
        reading.Is == Presence::Answers ? "A module " + reading.Module.Model : std::string("Something");
    return what + " answers at address " + ShownAddress(saved.Address) +
           " already. If it is the old module, take it off the line; if it is the new one, switch it to its "
           "initialisation state; any other needs an address of its own.";
}

NewModule FindNewModule(const LineWork& work, const SavedModule& saved) {
    NewModule found{ReadInitialising(work)};
    const ModuleReading& reading = found.Reading;
    if (reading.Is == Presence::Silent)
        found.Refusal = std::string("No module answers in its initialisation state. ") + ConnectAdvice;
    else if (reading.Is == Presence::Unclear)
        found.Refusal =
            "What answers in the initialisation state cannot be understood; perhaps two modules are "
            "in it. Leave only the new one in that state.";
    else if (reading.Module.Model != saved.Model) {
        found.OtherModel = true;
        found.Refusal = "The new module is a " + reading.Module.Model + ", the file has a " + saved.Model +
                        " at address " + ShownAddress(saved.Address) + ". Connect a " + saved.Model + ".";
    } else if (std::ranges::any_of(reading.Untold, [](const auto& name) { return name != "firmware"; }))
        found.Refusal = "The new module did not tell all of its settings. Try again.";
    else
        found.Coming = AllDifferences(saved, reading.Module);
    return found;
}

WrittenModule WriteReplacement(const LineWork& work, const SavedModule& saved, const ModuleReading& present) {
    const Contact way = ContactOf(work.Session, InitialisationAddress);
    WrittenModule written = WriteModule(work, {WithoutLink(saved, present.Module), way}, RunAsItIs);
    if (!written.AsWanted())
        return written;
    return WriteModule(work, {saved, way}, RunAsItIs);
}

std::optional<ModuleComparison> LookAtReplacement(const LineWork& work, const SavedModule& saved) {
    const ModuleReading reading =
        ReadModuleAt(work.Session, {saved.Address, {SavedWay(saved)}}, work.Tell.Words);
    if (reading.Is != Presence::Answers)
        return std::nullopt;
    return Compared(saved, reading);
}

std::string WhySilent(const LineWork& work, const SavedModule& saved) {
    const std::string silent =
        "No module answers at address " + ShownAddress(saved.Address) + " at " + WayText(saved) + ". ";
    const ModuleReading reading = ReadInitialising(work);
    if (reading.Is == Presence::Answers && reading.Module.Address == saved.Address)
        return silent + "The new one is still in its initialisation state.";
    return silent + "Check its power and its wires.";
}

std::string StateText(ReplacementStage stage, const SavedModule& saved) {
    const std::string place = "address " + ShownAddress(saved.Address) + ", " + WayText(saved);
    switch (stage) {
    case ReplacementStage::Untouched:
        return "Nothing was written: the new module is as it was.";
    case ReplacementStage::Writing:
        return "The new module may have some of the settings and not others. It is still in its "
               "initialisation state; replace it again to finish.";
    case ReplacementStage::Written:
        return "The new module has every setting of the file. " + std::string(PowerUpAdvice) +
               " It then answers at " + place + "; compare it with the file.";
    default:
        return "The new module is in its place: " + place + ".";
    }
}

std::string NoteText(ReplacementStage stage, const SavedModule& saved) {
    switch (stage) {
    case ReplacementStage::Untouched:
        return {};
    case ReplacementStage::Writing:
        return "The new module may have some of the settings; replace it again to finish.";
    case ReplacementStage::Written:
        return "The new module has every setting. " + std::string(PowerUpAdvice);
    default:
        return "The " + ShownModule(saved) + " is replaced.";
    }
}

void TakeIntoList(Session& session, const ModuleRecord& record) {
    const int initialising = std::exchange(session.ScanIndex, std::int16_t{-1});
    int index = 0;
    while (index < session.ModuleCount && session.ModuleTable[index].Address != record.Address)
        ++index;
    if (index == session.ModuleCount) {
        if (index == ModuleTable::Size)
            return;
        ++session.ModuleCount;
        session.Device.resize(static_cast<std::size_t>(session.ModuleCount));
    }
    session.ModuleTable[index] = record;
    session.Device[static_cast<std::size_t>(index)] = BuildListLine(session, index);
    if (initialising < 0 || initialising == index || initialising >= session.ModuleCount)
        return;
    session.ModuleTable[initialising].Answers = false; // not as this entry any more
    session.Device[static_cast<std::size_t>(initialising)] = BuildListLine(session, initialising);
}

std::string WayText(const SavedModule& saved) {
    const SendSettings way = SavedWay(saved);
    return std::to_string(BaudFromCode(way.BaudCode)) + " baud " + (way.Checksum == 1 ? "with" : "without") +
           " a checksum";
}

} // namespace kavro
