#include "cli/cli_options.h"

#include "link/runtime_failure.h"
#include "ports/port_registry.h"

#include <QCommandLineParser>

namespace kavro {

void AddLineOptions(QCommandLineParser& parser) {
    parser.addOption(
        {"port",
         "Work on COM port N (1 to 8), which is DEVICE: a path, tcp://HOST:PORT or "
         "rfc2217://HOST:PORT for a port of a device server, replay:FILE for a recording that is "
         "played, or \"demo\" for the built-in simulated line. Further --port options name the devices of "
         "further ports.",
         "N=DEVICE"});
    parser.addOption({"demo", "Work on the built-in simulated line, as COM1."});
    AddRecordingOptions(parser);
}

LineOptions ReadLineOptions(const QCommandLineParser& parser) {
    LineOptions options;
    if (parser.isSet("demo")) {
        options.Demo = true;
        options.Port = 1;
        options.Devices[1] = SimulatedLineDevice;
    }
    for (const QString& value : parser.values("port")) {
        const auto [port, device] = ParsePortOption(value.toStdString());
        if (!options.Devices.emplace(port, device).second)
            throw RuntimeFailure("COM" + std::to_string(port) +
                                 " is given two devices. Name each port once.");
        if (!options.Port)
            options.Port = static_cast<std::int16_t>(port);
    }
    options.Recording = ReadRecordingOptions(parser, options.Devices);
    // Not every command lets a rate be chosen.
    options.RateChosen = parser.optionNames().contains("baud");
    return options;
}

} // namespace kavro
