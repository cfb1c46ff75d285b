#include "cli/traffic_command.h"

#include "cli/traffic_printer.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "map/exchange_words.h"
#include "map/module_map.h"
#include "ports/map_reader.h"
#include "ports/recording_reader.h"
#include "ports/steady_clock.h"

#include <QCommandLineParser>

#include <memory>

namespace kavro {

namespace {

// The modules of a map, which may be a text too: nobody is spoken to.
KnownModules ModulesOf(const std::string& mapPath) {
    SteadyClock clock;
    Session session({}, clock);
    TakeOver(session, ReadMapFile(mapPath));
    return KnownModules(session);
}

int PrintTraffic(const Recording& recording, const KnownModules& known, const PrintFilter& filter,
                 bool json) {
    TrafficPrinter printer(json, known, filter);
    for (const LineTraffic& traffic : recording.Traffic)
        printer.Print(traffic);
    printer.Close();
    return ExitSuccess;
}

} // namespace

void AddTrafficOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Prints what was recorded with --record, an exchange a line: local time, address, baud rate, time "
        "to\n"
        "the end of the reply, how it ended, the bytes of both sides, and what they mean.\n\n"
        "Exit codes: 0 printed, 2 wrong use, or the file is no recording, 3 it cannot be printed.");
    parser.addPositionalArgument("FILE", "The recording.");
    parser.addOptions({
        {"address", "Only what was said to the module at ADDRESS, and its replies.", "ADDRESS"},
        {"failures", "Only what is amiss: no complete reply, a refusal, or stray characters."},
        {"json", "Print a JSON array with an object for each exchange, as in the recording, and its "
                 "\"address\", and in words what was \"asked\" and \"answered\"."},
        {"map",
         "Show values in the units of the modules in MAP, which the window saved or kavroctl search printed.",
         "MAP"},
    });
}

CommandAction PrepareTraffic(const QCommandLineParser& parser) {
    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        throw RuntimeFailure("Give the recording to print. See kavroctl traffic --help.");
    PrintFilter filter;
    filter.Failures = parser.isSet("failures");
    if (parser.isSet("address"))
        filter.Address = ParseAddress(parser.value("address").toStdString());
    const KnownModules known =
        parser.isSet("map") ? ModulesOf(parser.value("map").toStdString()) : KnownModules();
    const auto recording = std::make_shared<const Recording>(ReadRecording(arguments.first().toStdString()));
    return [=, json = parser.isSet("json")] { return PrintTraffic(*recording, known, filter, json); };
}

} // namespace kavro
