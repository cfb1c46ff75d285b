#include "cli/module_contact.h"

#include "cli/cli_options.h"
#include "cli/cli_text.h"
#include "link/baud.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "map/module_access.h"

#include <QCommandLineParser>

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
    if (address == 0) {
        if (options.BaudCode || options.Checksum)
            throw RuntimeFailure("A module in its initialisation state is spoken to at 9600 baud without a "
                                 "checksum. Leave --baud and --checksum out.");
        return {0, {InitialisationWay}};
    }
    const std::int16_t baudCode = options.BaudCode.value_or(known ? known->BaudCode : Baud9600Code);
    if (options.Checksum || (known && known->Checksum == 1))
        return {address, {{1, baudCode}}};
    if (known)
        return {address, {{0, baudCode}}};
    return {address, {{0, baudCode}, {1, baudCode}}};
}

void AddContactOptions(QCommandLineParser& parser) {
    parser.addPositionalArgument("ADDRESS", "Address of the module, 0 to 255; hexadecimal as 0xFF or FFH.");
    parser.addOptions({
        {"map",
         "Speak to the module as FILE says, a map printed by kavroctl search --json. Without it, or when the "
         "module is not in it: at 9600 baud, without a checksum, then with one.",
         "FILE"},
        {"baud", "Speak to the module at RATE.", "RATE"},
        {"checksum", "Speak to the module with a checksum only."},
        {"timeout", "Silence after which a reply is given up, in milliseconds, at least 100.", "MS"},
    });
}

ModuleOnLine ReadModuleOnLine(const QCommandLineParser& parser, int place) {
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() <= place)
        throw RuntimeFailure("Give the address of the module, 0 to 255.");
    const std::int16_t address = ParseAddress(arguments[place].toStdString());
    ContactOptions options{.BaudCode = {}, .Checksum = parser.isSet("checksum")};
    if (parser.isSet("baud"))
        options.BaudCode = ParseBaud(parser.value("baud").toStdString());
    auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (parser.isSet("timeout"))
        SetTimeouts(cli->Session.Line, ParseTimeout(parser.value("timeout").toStdString()));
    if (parser.isSet("map"))
        UseMap(cli->Session, parser.value("map").toStdString());
    const Contact contact = ContactOf(cli->Session, address, options);
    return {cli, contact};
}

Identified FindModule(Session& session, const Contact& contact) {
    bool heard = false;
    for (const SendSettings& way : contact.Ways) {
        const auto identified = TryWay(session, contact.Address, way);
        heard = heard || !session.Line.ReplyText.empty();
        if (identified == Identified::Vaguely) {
            PrintNote(
                "The module at address " + ShownAddress(contact.Address) +
                " answers, but what it tells of itself cannot be believed. Try again; kavroctl send shows "
                "what comes.");
            return Identified::No;
        }
        if (identified != Identified::No)
            return identified;
    }
    if (heard)
        PrintNote("Something answers at address " + ShownAddress(contact.Address) +
                  ", but not with a configuration. Try again; kavroctl send shows what comes.");
    else
        PrintNote("No module answers at address " + ShownAddress(contact.Address) + " at " +
                  WaysText(contact) +
                  ". Check its address, baud rate and checksum; kavroctl search finds them.");
    return Identified::No;
}

} // namespace kavro
