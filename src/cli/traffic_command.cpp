#include "cli/traffic_command.h"

#include "cli/cli_text.h"
#include "cli/row_printer.h"
#include "link/json_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/exchange_words.h"
#include "map/module_map.h"
#include "ports/map_reader.h"
#include "ports/recording_reader.h"

#include <QCommandLineParser>
#include <QDateTime>

#include <memory>
#include <optional>
#include <utility>

namespace kavro {

namespace {

struct TrafficOptions {
    std::optional<int> Address; // nothing: all
    bool Failures = false;
    bool Json = false;
};

// The modules of a map, which may be a text too: nobody is spoken to.
KnownModules ModulesOf(const std::string& mapPath) {
    SteadyClock clock;
    Session session({}, clock);
    TakeOver(session, ReadMapFile(mapPath));
    return KnownModules(session);
}

// "14:05:09.120", local time.
std::string TimeOfDay(std::int64_t utc) {
    return QDateTime::fromMSecsSinceEpoch(utc / 1000).toString("HH:mm:ss.zzz").toStdString();
}

std::string ReplyTime(const LineTraffic& traffic) {
    return traffic.LastUs < 0 ? "" : FormatNumber(static_cast<double>(traffic.LastUs) / 1000, 1, 1) + " ms";
}

std::string Words(const ExchangeWords& words) {
    const bool both = !words.Asked.empty() && !words.Answered.empty();
    return words.Asked + (both ? " -> " : "") + words.Answered;
}

std::string TextRow(const LineTraffic& traffic, const ExchangeWords& words) {
    const std::string address = words.Address ? ToHex(*words.Address, 2) : "";
    const std::string bytes = traffic.Outcome == TrafficOutcome::Stray
                                  ? VisibleText(traffic.Received)
                                  : VisibleText(traffic.Sent) + " -> " + VisibleText(traffic.Received);
    const std::string row = TimeOfDay(traffic.Utc) + "  " + FixedText(address, 2) + " " +
                            PadLeft(std::to_string(traffic.Baud), 6) + " " + PadLeft(ReplyTime(traffic), 10) +
                            "  " + FixedText(OutcomeName(traffic.Outcome), 10) + "  " + bytes;
    const std::string text = Words(words);
    return row + (text.empty() ? "" : "  " + text) + "\n";
}

// The line of the recording, with what is added behind its last key.
std::string JsonRow(const LineTraffic& traffic, bool tellEcho, const ExchangeWords& words) {
    const std::string line = RecordingLine(traffic, tellEcho);
    return line.substr(0, line.rfind('}')) +
           ",\"address\":" + (words.Address ? std::to_string(*words.Address) : "null") +
           ",\"asked\":" + JsonText(words.Asked) + ",\"answered\":" + JsonText(words.Answered) + "}";
}

int PrintTraffic(const Recording& recording, KnownModules known, const TrafficOptions& options) {
    RowPrinter rows(options.Json);
    bool echoTold = false;
    for (const LineTraffic& traffic : recording.Traffic) {
        known.Learn(traffic.Sent, traffic.Received);
        const ExchangeWords words = WordsOf(traffic.Sent, traffic.Received, known);
        if ((options.Address && words.Address != options.Address) ||
            (options.Failures && !IsFailure(traffic)) || rows.Abandoned())
            continue;
        const bool tellEcho = traffic.Echo && !std::exchange(echoTold, echoTold || traffic.Echo);
        rows.Print(options.Json ? JsonRow(traffic, tellEcho, words) : TextRow(traffic, words));
    }
    rows.Close();
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
    TrafficOptions options;
    options.Failures = parser.isSet("failures");
    options.Json = parser.isSet("json");
    if (parser.isSet("address"))
        options.Address = ParseAddress(parser.value("address").toStdString());
    const KnownModules known =
        parser.isSet("map") ? ModulesOf(parser.value("map").toStdString()) : KnownModules();
    const auto recording = std::make_shared<const Recording>(ReadRecording(arguments.first().toStdString()));
    return [=] { return PrintTraffic(*recording, known, options); };
}

} // namespace kavro
