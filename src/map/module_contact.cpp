#include "map/module_contact.h"

#include "link/baud.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::int16_t Baud9600Code = 3;
constexpr SendSettings InitialisationWay = {0, Baud9600Code};

std::string WaysText(const Contact& contact) {
    const std::string baud = std::to_string(BaudFromCode(contact.Ways.front().BaudCode)) + " baud";
    if (contact.Ways.size() > 1)
        return baud + ", without or with a checksum";
    return baud + (contact.Ways.front().Checksum == 1 ? " with" : " without") + " a checksum";
}

Identified TryWay(Session& session, std::int16_t address, const SendSettings& way) {
    ConfigAnswer answer{address, way.Checksum, way.BaudCode, {}};
    ModuleRecord record;
    const auto identified = AskModuleAgain(session.Line, answer, record);
    if (identified == Identified::No || identified == Identified::Vaguely)
        return identified;
    session.ModuleTable[0] = record;
    session.ModuleCount = 1;
    session.SelectedModule = 0;
    session.ScanIndex = address == 0 ? 0 : -1;
    if (identified == Identified::Fully)
        session.BelievedSince[static_cast<std::size_t>(address)] = session.Line.IncompleteCount;
    return identified;
}

} // namespace

Contact ContactOf(const Session& session, std::int16_t address, const ContactOptions& options) {
    std::optional<SendSettings> known;
    for (int index = 0; index < session.ModuleCount && !known && address != 0; ++index) {
        const ModuleRecord& record = session.ModuleTable[index];
        if (record.Address == address && index == session.ScanIndex)
            address = 0;
        else if (record.Address == address)
            known = {record.Checksum, record.BaudCode};
    }
    if (address == 0)
        return {0, {InitialisationWay}};
    const std::int16_t baudCode = options.BaudCode.value_or(known ? known->BaudCode : Baud9600Code);
    if (options.Checksum || (known && known->Checksum == 1))
        return {address, {{1, baudCode}}};
    if (known)
        return {address, {{0, baudCode}}};
    return {address, {{0, baudCode}, {1, baudCode}}};
}

FoundModule TryContact(Session& session, const Contact& contact) {
    bool heard = false;
    for (const SendSettings& way : contact.Ways) {
        const auto identified = TryWay(session, contact.Address, way);
        heard = heard || !session.Line.ReplyText.empty();
        if (identified != Identified::No)
            return {identified, true};
    }
    return {Identified::No, heard};
}

Identified FindModule(Session& session, const Contact& contact, const Teller& tell) {
    const auto [identified, heard] = TryContact(session, contact);
    if (identified == Identified::Partly || identified == Identified::Fully)
        return identified;
    const std::string place = "address " + ShownAddress(contact.Address);
    const std::string tryAgain = std::string(" Try again; ") + tell.Words.Sending + " shows what comes.";
    if (identified == Identified::Vaguely)
        tell("The module at " + place + " answers, but what it tells of itself cannot be believed." +
             tryAgain);
    else if (heard)
        tell("Something answers at " + place + ", but not with a configuration." + tryAgain);
    else
        tell("No module answers at " + place + " at " + WaysText(contact) +
             ". Check its address, baud rate and checksum; " + tell.Words.Searching + " finds them.");
    return Identified::No;
}

} // namespace kavro
