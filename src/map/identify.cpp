#include "map/identify.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/command_forms.h"

#include <algorithm>

namespace kavro {

namespace {

ModuleContact ContactFor(const ConfigAnswer& answer, Belief belief) {
    const std::string address = ToHex(answer.Address, 2);
    const std::string own = answer.Address == 0 ? Middle(answer.Reply, 2, 2) : address;
    const auto type = HexNumber(Middle(answer.Reply, 4, 2));
    return {address,
            answer.Checksum,
            answer.BaudCode,
            belief,
            {address, own, static_cast<std::int16_t>(type.value_or(0))}};
}

// The text behind "!AA". The exact search uses it as it comes, valid or not.
std::string ModuleName(Line& line, const ModuleContact& contact) {
    const auto reply = AskContact(line, contact, {}, '$', "M");
    return Middle(contact.Belief == Belief::Exact ? line.ReplyText : reply.value_or(""), 4);
}

// Whether the answer is a configuration that the model can have.
bool IsConfigOf(const ConfigAnswer& answer, const std::string& model, const ReplyMeasure& measure) {
    return FitsForm(answer.Reply, ReplyFormOf(model, '$', "2"), measure) &&
           HasModelsCodes(answer.Reply, model);
}

// Away from its initialisation state a module is as it says that it is spoken to.
bool IsSpokenToLikeThat(const ConfigAnswer& answer, const ModuleRecord& record) {
    return answer.Address == 0 || (record.BaudCode == answer.BaudCode && record.Checksum == answer.Checksum);
}

// Silence and refusals are answers, anything else that is no configuration is asked for once more.
bool AskForCredibleConfig(Line& line, ConfigAnswer& answer) {
    for (int tries = 0; tries < 2; ++tries) {
        if (!line.AwaitSilence() && tries > 0)
            break;
        const auto told = AskForConfig(line, answer.Address, answer.Checksum, answer.BaudCode);
        if (told && IsCredible(*told)) {
            answer = *told;
            return true;
        }
        const bool silent = line.ReplyStatus == 0 && line.ReplyText.empty();
        if (silent || IsRefusal(line.ReplyText, ContactFor(answer, Belief::Repeated).Measure))
            break;
        // Perhaps the end of the reply before, doubled or torn off by a disturbance: then this one's is late.
        line.NoteStray();
    }
    return false;
}

} // namespace

std::optional<ConfigAnswer> AskForConfig(Line& line, std::int16_t address, std::int16_t checksum,
                                         std::int16_t baudCode) {
    return AskForConfig(line, address, checksum, baudCode, AlwaysMs(line.ReplyTimeout));
}

std::optional<ConfigAnswer> AskForConfig(Line& line, std::int16_t address, std::int16_t checksum,
                                         std::int16_t baudCode, ReplyTimes times) {
    line.Exchange("$" + ToHex(address, 2) + "2", checksum, baudCode, times);
    const std::size_t length = line.ReplyText.size();
    if (!line.ReplyIs('!') || (length != 9 && length != 11))
        return std::nullopt;
    return ConfigAnswer{address, checksum, baudCode, line.ReplyText};
}

bool IsCredible(const ConfigAnswer& answer) {
    const ReplyMeasure measure = ContactFor(answer, Belief::Strict).Measure;
    return FitsForm(answer.Reply, "!AAhhhhhh", measure) || FitsForm(answer.Reply, "!AAhhhhhhhh", measure);
}

Identified IdentifyModule(Line& line, const ConfigAnswer& answer, ModuleRecord& record, Belief belief) {
    const auto reportedAddress = HexNumber(Middle(answer.Reply, 2, 2));
    const auto typeCode = HexNumber(Middle(answer.Reply, 4, 2));
    const auto format = HexNumber(Middle(answer.Reply, 8, 2));
    if (!typeCode || !format || (answer.Address == 0 && !reportedAddress))
        return Identified::No;
    record.Address = answer.Address == 0 ? static_cast<std::int16_t>(*reportedAddress) : answer.Address;
    record.InputRange = static_cast<std::int16_t>(*typeCode);

    ModuleContact contact = ContactFor(answer, belief);
    const std::string moduleName = ModuleName(line, contact);
    record.Model = FixedText(moduleName, 6);

    if (!DecodeConfigReply(answer.Reply, moduleName, record))
        return Identified::No;
    contact.Checksum = answer.Address == 0 ? std::int16_t{0} : record.Checksum;
    const bool clear = belief == Belief::Exact || (ModuleFamily(moduleName) != UnknownFamily &&
                                                   IsConfigOf(answer, moduleName, contact.Measure) &&
                                                   IsSpokenToLikeThat(answer, record));
    if (!clear)
        return Identified::Vaguely;
    const bool all = ReadFamilySettings(line, moduleName, contact, record);
    return all ? Identified::Fully : Identified::Partly;
}

bool TellsMore(Identified now, const ModuleRecord& found, Identified before) {
    return now > before || (now == before && !Trim(found.Model).empty());
}

Identified AskModuleAgain(Line& line, ConfigAnswer& answer, ModuleRecord& record) {
    Identified identified = Identified::No;
    std::string told;
    for (int passes = 0; passes < 2 && identified != Identified::Fully; ++passes) {
        if (!AskForCredibleConfig(line, answer))
            break;
        ModuleRecord found;
        Identified now = IdentifyModule(line, answer, found, Belief::Repeated);
        const std::string tells = answer.Reply + found.Model;
        const bool unknown = !Trim(found.Model).empty() && ModuleFamily(found.Model) == UnknownFamily;
        if (unknown && tells == told && IsSpokenToLikeThat(answer, found))
            now = Identified::Fully;
        if (TellsMore(now, found, identified))
            record = found;
        identified = std::max(identified, now);
        told = tells;
    }
    return identified;
}

} // namespace kavro
