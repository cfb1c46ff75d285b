#include "cli/kavrosim.h"

#include "cli/line_control.h"
#include "link/baud.h"
#include "link/network_address.h"
#include "link/port_devices.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/product.h"
#include "ports/pty_server.h"
#include "ports/recording_reader.h"
#include "ports/simulated_line_file.h"
#include "ports/steady_clock.h"
#include "ports/tcp_server.h"
#include "ports/termination_signals.h"
#include "sim/demo_line.h"
#include "sim/replayed_line.h"

#include <QCommandLineParser>

#include <algorithm>
#include <cstdio>
#include <optional>

namespace kavro {

namespace {

constexpr int WrongUse = 2;
constexpr int PortTrouble = 3;
constexpr int StandardInput = 0;

struct KavrosimOptions {
    std::string LinePath;                 // empty: the demo line
    std::string Recording;                // played in place of a line; empty: none
    bool Delays = true;                   // it takes the time that it took
    std::string LinkPath;                 // empty: no link
    std::optional<NetworkAddress> Listen; // nothing: a pseudo-terminal
    int Baud = 9600;                      // where the client cannot set it
    std::optional<std::uint32_t> Seed;
    bool Log = false;
    bool Control = false;    // by lines on standard input
    std::string Information; // help or version to print instead of serving
};

/// Prints a line at once; false when nobody reads it any more.
bool Print(const std::string& line) {
    return std::puts(line.c_str()) >= 0 && std::fflush(stdout) == 0;
}

// One line whatever the names in it contain.
int Complain(int exitCode, std::string what) {
    std::ranges::replace_if(
        what, [](unsigned char character) { return character < ' '; }, '?');
    std::fprintf(stderr, "kavrosim: %s\n", what.c_str());
    return exitCode;
}

template <class Server>
void Run(Server& server, const std::string& device, SimulatedLine& line, const KavrosimOptions& options,
         int stopDescriptor) {
    const std::int64_t start = SteadyClock().Microseconds();
    if (options.Log)
        line.Log = [&server, start](const LineEvent& event) {
            if (!Print(LogLine(event, start)))
                server.Stop();
        };
    if (!Print(device))
        throw RuntimeFailure("The device path cannot be written to standard output.");
    LineControl control(line);
    SideInput input;
    if (options.Control)
        input = {StandardInput, [&](std::string_view text) {
                     for (const std::string& answer : control.Take(text))
                         if (!Print(answer))
                             server.Stop();
                 }};
    server.Run(stopDescriptor, input);
}

void Serve(const KavrosimOptions& options, SimulatedLine& line, int stopDescriptor) {
    SteadyClock clock;
    if (options.Listen) {
        TcpServer server(line, clock, *options.Listen, options.Baud);
        Run(server, server.Device(), line, options, stopDescriptor);
    } else {
        PtyServer server(line, clock, options.LinkPath);
        Run(server, server.DevicePath(), line, options, stopDescriptor);
    }
}

void ServeRecording(const KavrosimOptions& options, int stopDescriptor) {
    ReplayedLine line(ReadRecording(options.Recording).Traffic, options.Delays);
    std::int64_t notRecorded = 0;
    line.NotRecorded = [&] { ++notRecorded; };
    Serve(options, line, stopDescriptor);
    if (const std::string text = NotRecordedText(notRecorded); !text.empty())
        Complain(0, text);
}

int Serve(const KavrosimOptions& options) {
    const TerminationSignals endRequests;
    if (!options.Recording.empty()) {
        ServeRecording(options, endRequests.Descriptor());
        return 0;
    }
    SimulatedLine line = options.LinePath.empty() ? DemoLine() : ReadSimulatedLine(options.LinePath);
    if (options.Seed)
        line.SetSeed(*options.Seed);
    Serve(options, line, endRequests.Descriptor());
    return 0;
}

std::optional<std::uint32_t> SeedOf(const QString& text) {
    bool number = false;
    const std::uint32_t seed = text.toUInt(&number);
    if (!number)
        throw RuntimeFailure("--seed needs a whole number from 0 to 4294967295.");
    return seed;
}

int BaudOf(const QString& text) {
    const auto baud = CappedNumber(text.toStdString());
    if (!baud || !IsStandardBaud(*baud))
        throw RuntimeFailure("--baud needs a rate of the modules, for example 9600.");
    return *baud;
}

struct ListenOption {
    const char* Name;
    NetworkKind Kind;
};
constexpr ListenOption ListenOptions[] = {{"listen", NetworkKind::Raw},
                                          {"listen-rfc2217", NetworkKind::Rfc2217}};

void ReadListening(const QCommandLineParser& parser, KavrosimOptions& options) {
    for (const auto& [name, kind] : ListenOptions) {
        if (!parser.isSet(name))
            continue;
        if (options.Listen || parser.isSet("link"))
            throw RuntimeFailure("The line is served in one place: --link, --listen or --listen-rfc2217.");
        options.Listen = ParseListenAddress(parser.value(name).toStdString(), kind);
    }
    if (parser.isSet("baud") && !options.Listen)
        throw RuntimeFailure("--baud goes with --listen: on a pseudo-terminal the other side sets the rate.");
    if (parser.isSet("baud"))
        options.Baud = BaudOf(parser.value("baud"));
}

void ReadReplay(const QCommandLineParser& parser, KavrosimOptions& options) {
    options.Recording = parser.value("replay").toStdString();
    options.Delays = !parser.isSet("no-delays");
    if (parser.isSet("no-delays") && !parser.isSet("replay"))
        throw RuntimeFailure("--no-delays goes with --replay.");
    if (!parser.isSet("replay"))
        return;
    if (options.Recording.empty())
        throw RuntimeFailure("--replay needs the path of a recording.");
    if (parser.isSet("line") || parser.isSet("seed") || parser.isSet("control"))
        throw RuntimeFailure(
            "--replay plays a recording, so that --line, --seed and --control do not go with it.");
}

// The parser begins with the path of the program and ends with an empty line.
std::string HelpText(const QCommandLineParser& parser) {
    const QString text = parser.helpText();
    return "Usage: kavrosim [options]" + text.mid(text.indexOf('\n')).trimmed().prepend('\n').toStdString();
}

void AddOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Serves a line of simulated modules on a pseudo-terminal, or over TCP. The first line "
        "printed is the device to open; Ctrl+C ends.");
    parser.addOptions({
        {"line", "Line described in the JSON file <file>; without it the demo line.", "file"},
        {"replay",
         "Play the recording <file>: each command gets the replies that it got then, in their order, the "
         "last one for ever.",
         "file"},
        {"no-delays", "With --replay: reply at once."},
        {"link", "Make the symbolic link <path> to the device.", "path"},
        {"listen",
         "Serve the line over TCP in place of a pseudo-terminal, raw, at <[host:]port>; without a host for "
         "this computer alone, at port 0 at any that is free.",
         "[host:]port"},
        {"listen-rfc2217", "The same with RFC 2217, with which the client sets the rate.", "[host:]port"},
        {"baud", "Rate of a line served over TCP; 9600 unless given. With RFC 2217 it is the first one.",
         "rate"},
        {"seed", "Seed of the random noise, 0 to 4294967295.", "number"},
        {"control",
         "Take lines from standard input: off ADDRESS, on ADDRESS, init ADDRESS (on in its initialisation "
         "state), new MODEL (another module, in that state), list. #NUMBER of the list stands for an "
         "address too. Each is answered with ok or an error."},
        {"log", "Print every command and its reply with time and baud rate."},
        {{"h", "help"}, "Print this help and end."},
        {{"v", "version"}, "Print the version and end."},
    });
}

KavrosimOptions ParseOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    AddOptions(parser);
    if (!parser.parse(arguments))
        throw RuntimeFailure(parser.errorText().toStdString() + " See kavrosim --help.");

    KavrosimOptions options;
    if (parser.isSet("help") || parser.isSet("version")) {
        options.Information =
            parser.isSet("help") ? HelpText(parser) : std::string("kavrosim ") + VersionText;
        return options;
    }
    const QStringList others = parser.positionalArguments();
    if (!others.isEmpty())
        throw RuntimeFailure("\"" + others.first().toStdString() +
                             "\" is not understood: kavrosim takes options only. See kavrosim --help.");
    options.LinePath = parser.value("line").toStdString();
    options.LinkPath = parser.value("link").toStdString();
    options.Log = parser.isSet("log");
    options.Control = parser.isSet("control");
    if (parser.isSet("line") && options.LinePath.empty())
        throw RuntimeFailure("--line needs the path of a file.");
    if (parser.isSet("link") && options.LinkPath.empty())
        throw RuntimeFailure("--link needs a path.");
    ReadReplay(parser, options);
    ReadListening(parser, options);
    if (parser.isSet("seed"))
        options.Seed = SeedOf(parser.value("seed"));
    return options;
}

} // namespace

std::string LogLine(const LineEvent& event, std::int64_t start) {
    char head[64] = {};
    const auto milliseconds = static_cast<long long>((event.Moment - start) / 1000);
    std::snprintf(head, sizeof head, "%7lld.%03lld s %6d baud  ", milliseconds / 1000, milliseconds % 1000,
                  event.Baud);
    const std::string reply = event.Reply.empty() ? "(silence)" : VisibleText(event.Reply);
    return head + VisibleText(event.Command + '\r') + " -> " + reply;
}

int RunKavrosim(const QStringList& arguments) {
    KavrosimOptions options;
    try {
        options = ParseOptions(arguments);
    } catch (const RuntimeFailure& failure) {
        return Complain(WrongUse, failure.what());
    }
    try {
        if (options.Information.empty())
            return Serve(options);
        return Print(options.Information) ? 0 : PortTrouble;
    } catch (const RuntimeFailure& failure) {
        return Complain(PortTrouble, failure.what());
    }
}

} // namespace kavro
