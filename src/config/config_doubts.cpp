#include "config/config_doubts.h"

#include "link/baud.h"
#include "link/number_text.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <algorithm>

namespace kavro {

namespace {

double NumberOf(const NamedConfig& config, const char* name) {
    return std::get<double>(FindSetting(config, name)->Value());
}

bool IsAmong(const std::vector<std::string>& names, const char* name) {
    return std::ranges::find(names, name) != names.end();
}

// At address 00 a module in its initialisation state tells the address that is really its own.
bool Initialising(const Line& line, std::int16_t address) {
    return address == 0 && line.ReplyIs('!') && HexNumber(Middle(line.ReplyText, 2, 2)).value_or(0) != 0;
}

// Whether anything at all comes back from an address, be it garbled.
bool Answers(Line& line, std::int16_t address, std::int16_t baudCode) {
    const CarefulTransactions careful(line);
    for (const std::int16_t checksum : {std::int16_t{0}, std::int16_t{1}}) {
        line.Exchange("$" + ToHex(address, 2) + "2", checksum, baudCode, line.ReplyTimeout);
        if (!line.ReplyText.empty())
            return !Initialising(line, address);
    }
    return false;
}

std::string AlarmDoubt(const NamedConfig& config) {
    const double low = NumberOf(config, "low-alarm");
    const double high = NumberOf(config, "high-alarm");
    if (low <= high)
        return {};
    return "The low alarm limit " + ShortestText(low) + " is above the high alarm limit " +
           ShortestText(high) + ".";
}

std::string AddressDoubt(Session& session, const NamedConfig& config,
                         const std::vector<ModuleRecord>& known) {
    const auto address = static_cast<std::int16_t>(NumberOf(config, "address"));
    const std::string place = " address " + ShownAddress(address);
    const auto other = std::ranges::find(known, address, &ModuleRecord::Address);
    if (other != known.end()) {
        const std::string model = Trim(ShownModel(other->Model));
        return "The map has a module" + (model.empty() ? "" : " " + model) + " at" + place + " already.";
    }
    // At the rate that the module will have: where modules differ in it they do not hear each other's
    // commands.
    const auto baud = static_cast<std::int32_t>(NumberOf(config, "baud"));
    return Answers(session.Line, address, CodeFromBaud(baud)) ? "A module answers at" + place + " already."
                                                              : "";
}

} // namespace

std::vector<ModuleRecord> ModulesOfList(const Session& session) {
    std::vector<ModuleRecord> modules;
    modules.reserve(static_cast<std::size_t>(session.ModuleCount));
    for (int index = 0; index < session.ModuleCount; ++index)
        modules.push_back(session.ModuleTable[index]);
    return modules;
}

std::string DoubtAbout(Session& session, const NamedConfig& config, const std::vector<std::string>& changed,
                       const std::vector<ModuleRecord>& known) {
    std::string doubt;
    if (IsAmong(changed, "low-alarm") || IsAmong(changed, "high-alarm"))
        doubt = AlarmDoubt(config);
    if (doubt.empty() && IsAmong(changed, "address"))
        doubt = AddressDoubt(session, config, known);
    return doubt;
}

} // namespace kavro
