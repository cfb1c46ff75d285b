#include "project/replacement.h"

#include "map/module_access.h"
#include "project/find_modules.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::int16_t InitialisationAddress = 0;

void RunAsItIs(int /*address*/, const std::function<void()>& write) {
    write();
}

// How the module will be spoken to stays as it is.
SavedModule WithoutLink(SavedModule wanted, const SavedModule& present) {
    wanted.Address = present.Address;
    std::erase_if(wanted.Settings, [](const SavedSetting& setting) {
        return setting.Name == "baud" || setting.Name == "checksum";
    });
    return wanted;
}

} // namespace

std::string PlaceTaken(const LineWork& work, const SavedModule& saved) {
    if (saved.Address == InitialisationAddress)
        return {}; // where the new module will answer
    const ModuleReading reading = ReadSavedModules(work, {saved}).front();
    const bool there = reading.Is != Presence::Silent && reading.Way.Address != InitialisationAddress;
    if (!there)
        return {};
    const std::string what =
        reading.Is == Presence::Answers ? "A module " + reading.Module.Model : std::string("Something");
    return what + " answers at address " + ShownAddress(saved.Address) +
           " already. Take the old module off the line, or give another one its own address, first.";
}

NewModule FindNewModule(const LineWork& work, const SavedModule& saved) {
    NewModule found{
        ReadModuleAt(work.Session, ContactOf(work.Session, InitialisationAddress), work.Tell.Words)};
    const ModuleReading& reading = found.Reading;
    if (reading.Is == Presence::Silent)
        found.Refusal = "No module answers in its initialisation state. Connect the new module, switch it to "
                        "that state, and power it up.";
    else if (reading.Is == Presence::Unclear)
        found.Refusal = reading.Trouble;
    else if (reading.Module.Model != saved.Model)
        found.Refusal = "The new module is a " + reading.Module.Model + ", the file has a " + saved.Model +
                        " at this address. Connect a " + saved.Model + ".";
    else if (std::ranges::any_of(reading.Untold, [](const auto& name) { return name != "firmware"; }))
        found.Refusal = "The new module did not tell all of its settings. Try again.";
    else
        found.Coming = DifferencesBetween(saved, reading.Module);
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

} // namespace kavro
