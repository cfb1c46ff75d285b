#include "project/module_reading.h"

#include "config/config_exchange.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_command.h"

#include <utility>

namespace kavro {

namespace {

// Keeps the last thing told, for who tells it in another place.
class LastTold : public Messages {
public:
    void Show(const std::string& text, const std::string& /*title*/) override { Text = text; }

    std::string Text;
};

constexpr int MostTries = 3; // a poor line damages one reply of a module that has many

// What names the module stands above its settings.
bool IsSavedSetting(const NamedSetting& setting) {
    return setting.When != Writable::Never && setting.Name != "address";
}

} // namespace

SavedModule SavedModuleOf(const ModuleRecord& record, const NamedConfig& config) {
    SavedModule module{record.Address, Trim(ShownModel(record.Model)), {}};
    for (const NamedSetting& setting : config.Settings)
        if (setting.Told && IsSavedSetting(setting))
            module.Settings.push_back({setting.Name, setting.Value()});
    return module;
}

namespace {

void ReadFirmware(Session& session, ModuleReading& reading) {
    const ModuleReply reply = AskModuleTwice(session, session.SelectedModule, '$', "F");
    reading.Module.Firmware = Trim(reply.Data);
    if (reply.Answer == Answer::NoReply || reply.Answer == Answer::Garbled)
        reading.Untold.emplace_back("firmware");
}

ModuleReading ReadOnce(Session& session, const Contact& contact, const ProgramWords& words) {
    LastTold told;
    const std::int64_t characters = session.Line.Statistics.Silent;
    const std::int64_t transactions = session.Line.Statistics.Transactions;
    const auto config = ReadConfigTwice(session, contact, {told, words}, ReadToldConfig);
    ModuleReading reading;
    if (!config) {
        const bool silent = session.Line.Statistics.Silent - characters ==
                            session.Line.Statistics.Transactions - transactions;
        reading.Is = silent ? Presence::Silent : Presence::Unclear;
        reading.Trouble = told.Text;
        return reading;
    }
    const ModuleRecord& record = session.ModuleTable[session.SelectedModule];
    reading.Is = Presence::Answers;
    reading.Writable = config->Writable;
    reading.Way = {contact.Address, {{record.Checksum, record.BaudCode}}};
    if (contact.Address == 0)
        reading.Way = contact;
    reading.Module = SavedModuleOf(record, *config);
    for (const NamedSetting& setting : config->Settings)
        if (!setting.Told)
            reading.Untold.push_back(setting.Name);
    ReadFirmware(session, reading);
    return reading;
}

bool ToldAll(const ModuleReading& reading) {
    return reading.Is == Presence::Answers && reading.Untold.empty();
}

} // namespace

ModuleReading ReadModuleAt(Session& session, const Contact& contact, const ProgramWords& words) {
    ModuleReading best = ReadOnce(session, contact, words);
    for (int tries = 1; tries < MostTries && best.Is != Presence::Silent && !ToldAll(best); ++tries) {
        ModuleReading next = ReadOnce(session, contact, words);
        if (next.Is > best.Is || (next.Is == best.Is && next.Untold.size() < best.Untold.size()))
            best = std::move(next);
    }
    return best;
}

Contact ContactOfEntry(const Session& session, int index) {
    if (index == session.ScanIndex)
        return ContactOf(session, 0);
    const ModuleRecord& record = session.ModuleTable[index];
    const auto other = static_cast<std::int16_t>(1 - record.Checksum); // a list as text does not tell it
    return {record.Address, {{record.Checksum, record.BaudCode}, {other, record.BaudCode}}};
}

} // namespace kavro
