#include "cli/contact_options.h"

#include "cli/cli_options.h"
#include "cli/cli_text.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"

#include <QCommandLineParser>

namespace kavro {

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
    if (contact.Address == 0 && (options.BaudCode || options.Checksum))
        throw RuntimeFailure("A module in its initialisation state is spoken to at 9600 baud without a "
                             "checksum. Leave --baud and --checksum out.");
    return {cli, contact};
}

} // namespace kavro
