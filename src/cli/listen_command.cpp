#include "cli/listen_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "cli/traffic_printer.h"
#include "link/baud.h"
#include "link/entered_values.h"
#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "traffic/listening.h"
#include "traffic/traffic_summary.h"

#include <QCommandLineParser>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kavro {

namespace {

constexpr int TurnMs = 50;

// Keeps what passed until it is printed; counts it as long as it lives.
class Hearer : public LineListener {
public:
    explicit Hearer(Line& line) : line_(line) { line_.Listeners.push_back(this); }
    ~Hearer() override { std::erase(line_.Listeners, this); }
    Hearer(const Hearer&) = delete;
    Hearer& operator=(const Hearer&) = delete;

    void Passed(const LineTraffic& traffic) override {
        Summary.Passed(traffic);
        heard_.push_back(traffic);
    }
    std::vector<LineTraffic> Take() { return std::exchange(heard_, {}); }

    TrafficSummary Summary;

private:
    Line& line_;
    std::vector<LineTraffic> heard_;
};

void PrintHeard(Hearer& hearer, TrafficPrinter& printer) {
    for (const LineTraffic& traffic : hearer.Take())
        printer.Print(traffic);
}

// The port's own rate is the one there is, where its device server keeps it.
std::optional<std::int16_t> RateOf(const CliSession& cli, std::optional<std::int16_t> chosen) {
    return RateIsFixed(cli.Device()) ? CodeFromBaud(cli.Session.Line.BaudInUse()) : chosen;
}

int Listen(CliSession& cli, std::optional<std::int16_t> baudCode, bool json) {
    Line& line = cli.Session.Line;
    const InterruptWatch watch(line);
    Hearer hearer(line);
    TrafficPrinter printer(json, KnownModules(cli.Session));
    Listening listening(line, RateOf(cli, baudCode), [](std::int32_t baud) {
        PrintNote("The line talks at " + std::to_string(baud) + " baud.");
    });
    try {
        while (!watch.Interrupted() && !printer.Abandoned()) {
            listening.Listen(TurnMs);
            PrintHeard(hearer, printer);
        }
    } catch (const RuntimeFailure&) {
        listening.End();
        PrintHeard(hearer, printer);
        printer.Close();
        throw;
    }
    listening.End();
    PrintHeard(hearer, printer);
    printer.Close();
    if (!listening.RateKnown())
        PrintNote("Nothing was heard that makes sense. Check the two wires, or give the rate (--baud).");
    for (const std::string& text : hearer.Summary.Lines())
        PrintNote(text);
    return ExitSuccess;
}

} // namespace

void AddListenOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Listens to what another master and its modules say, and sends nothing. Prints each exchange with\n"
        "its meaning, as kavroctl traffic does. Ctrl+C ends it; then standard error tells by module what\n"
        "was heard.\n\n"
        "Exit codes: 0 it was ended by Ctrl+C, 2 wrong use, 3 port trouble.");
    parser.addOptions({
        {"baud", "Listen at RATE; without it the rates are tried until what is heard makes sense.", "RATE"},
        {"map", "Show values in the units of the modules in MAP, printed by kavroctl search --json.", "MAP"},
        {"json", "Print a JSON array with an object for each exchange."},
    });
}

CommandAction PrepareListen(const QCommandLineParser& parser) {
    std::optional<std::int16_t> baudCode;
    if (parser.isSet("baud"))
        baudCode = ParseBaud(parser.value("baud").toStdString());
    const auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (parser.isSet("map"))
        UseMap(cli->Session, parser.value("map").toStdString());
    return
        [=, json = parser.isSet("json")] { return cli->Run([&] { return Listen(*cli, baudCode, json); }); };
}

} // namespace kavro
