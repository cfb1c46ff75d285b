#include "project/find_modules.h"

#include "link/baud.h"
#include "map/module_access.h"

#include <algorithm>

namespace kavro {

Contact KnownContact(const SavedModule& module, const Contact& listed) {
    const SendSettings saved = SavedWay(module);
    if (listed.Address == 0)
        return listed;
    Contact contact{module.Address, {saved}};
    std::vector<SendSettings> more = listed.Ways;
    more.push_back({static_cast<std::int16_t>(1 - saved.Checksum), saved.BaudCode});
    for (const SendSettings& way : more)
        if (std::ranges::find(contact.Ways, way) == contact.Ways.end())
            contact.Ways.push_back(way);
    return contact;
}

namespace {

// Those modules that were silent so far.
struct Search {
    const LineWork& Work;
    const std::vector<SavedModule>& Modules;
    std::vector<ModuleReading>& Readings;

    bool Over() const {
        return std::ranges::none_of(Readings, [](const auto& each) { return each.Is == Presence::Silent; });
    }

    // The module at address 00 tells the address that is really its own.
    void LookAtInitialisation() const {
        Work.Progress("Looking at address 00", 0, 0);
        const ModuleReading found = ReadModuleAt(Work.Session, ContactOf(Work.Session, 0), Work.Tell.Words);
        for (std::size_t i = 0; i < Modules.size() && found.Is == Presence::Answers; ++i)
            if (Readings[i].Is == Presence::Silent && Modules[i].Address == found.Module.Address)
                Readings[i] = found;
    }

    void LookAt(const SendSettings& way) const {
        for (std::size_t i = 0; i < Modules.size(); ++i) {
            if (Readings[i].Is != Presence::Silent)
                continue;
            const ModuleReading found =
                ReadModuleAt(Work.Session, {Modules[i].Address, {way}}, Work.Tell.Words);
            if (found.Is == Presence::Answers) // noise of other rates is no module
                Readings[i] = found;
        }
    }

    void LookEverywhere() const {
        for (std::int16_t baudCode = 0; baudCode < BaudCodeCount && !Over(); ++baudCode) {
            Work.Progress("Trying " + std::to_string(BaudFromCode(baudCode)) + " baud", baudCode,
                          BaudCodeCount);
            LookAt({0, baudCode});
            LookAt({1, baudCode});
        }
    }
};

} // namespace

std::vector<ModuleReading> ReadSavedModules(const LineWork& work, const std::vector<SavedModule>& modules) {
    // Before the first reading, which takes the list away.
    std::vector<Contact> contacts;
    for (const SavedModule& module : modules)
        contacts.push_back(KnownContact(module, ContactOf(work.Session, module.Address)));
    std::vector<ModuleReading> readings;
    for (std::size_t i = 0; i < modules.size(); ++i) {
        work.Progress("Reading " + ShownModule(modules[i]), static_cast<int>(i),
                      static_cast<int>(modules.size()));
        readings.push_back(ReadModuleAt(work.Session, contacts[i], work.Tell.Words));
    }
    const Search search{work, modules, readings};
    if (!search.Over())
        search.LookAtInitialisation();
    search.LookEverywhere();
    return readings;
}

} // namespace kavro
