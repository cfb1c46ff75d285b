#include "config/config_exchange.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <algorithm>

namespace kavro {

namespace {

bool SameSettings(const NamedConfig& left, const NamedConfig& right) {
    return std::ranges::equal(left.Settings, right.Settings, SameValue);
}

// The settings of the module that was written, wherever it answers now.
std::optional<NamedConfig> ReadBack(Session& session, std::int16_t wantedAddress, const Teller& tell) {
    const ModuleRecord record = session.ModuleTable[0];
    if (session.ScanIndex == 0)
        return ReadConfig(session, {0, {{0, ModuleBaudCode(session, 0)}}}, tell);
    const SendSettings way = {record.Checksum, record.BaudCode};
    auto config = ReadConfig(session, {record.Address, {way}}, tell);
    return config || wantedAddress == record.Address ? std::move(config)
                                                     : ReadConfig(session, {wantedAddress, {way}}, tell);
}

} // namespace

std::optional<NamedConfig> ReadToldConfig(Session& session, const Contact& contact, const Teller& tell) {
    const Identified identified = FindModule(session, contact, tell);
    if (identified == Identified::No)
        return std::nullopt;
    return ReadNamedConfig(session, identified);
}

std::optional<NamedConfig> ReadConfig(Session& session, const Contact& contact, const Teller& tell) {
    auto config = ReadToldConfig(session, contact, tell);
    const std::string place = " at address " + ShownAddress(contact.Address);
    if (config && !config->Writable)
        tell("The module " + Trim(ShownModel(session.ModuleTable[0].Model)) + place +
             " has no settings that " + tell.Words.Name + " knows.");
    else if (config && !config->Known)
        tell("The module" + place + " did not tell all of its settings. Try again.");
    else
        return config;
    return std::nullopt;
}

std::optional<NamedConfig> ReadConfigTwice(Session& session, const Contact& contact, const Teller& tell,
                                           ConfigReader* read) {
    auto before = read(session, contact, tell);
    for (int tries = 0; tries < 2 && before; ++tries) {
        const ModuleRecord record = session.ModuleTable[0];
        auto config = read(session, contact, tell);
        if (!config || (SameSetup(session.ModuleTable[0], record) && SameSettings(*before, *config)))
            return config;
        before = std::move(config);
    }
    if (before)
        tell("The module at address " + ShownAddress(contact.Address) +
             " tells its settings differently each time. Nothing was written; check the wiring, then try "
             "again.");
    return std::nullopt;
}

ConfigOutcome WriteConfig(Session& session, const NamedConfig& config, Messages& messages) {
    const CarefulTransactions careful(session.Line);
    return config.Apply(messages);
}

std::optional<std::vector<SettingDifference>> NotTaken(Session& session, const NamedConfig& wanted,
                                                       const Teller& tell) {
    const double address = std::get<double>(FindSetting(wanted, "address")->Value());
    const auto present = ReadBack(session, static_cast<std::int16_t>(address), tell);
    // A name that is damaged may still be that of another model, which has other settings.
    if (!present || !SameNames(wanted, *present)) {
        tell("What was written could not be read back.");
        return std::nullopt;
    }
    return Differences(wanted, *present);
}

bool HasTaken(Session& session, const NamedConfig& wanted, const Teller& tell) {
    const auto differences = NotTaken(session, wanted, tell);
    for (const SettingDifference& each : differences.value_or(std::vector<SettingDifference>()))
        tell("The " + each.Name + " did not take: " + each.Wanted.Text + " is wanted, the module has " +
             each.Present.Text + ".");
    return differences && differences->empty();
}

} // namespace kavro
