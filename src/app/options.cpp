#include "app/options.h"

#include "link/runtime_failure.h"
#include "map/product.h"
#include "ports/port_registry.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

namespace kavro {

namespace {

constexpr int WrongUse = 2;

std::optional<Options> Stop(const QString& text, std::FILE* to, int code, int& exitCode) {
    std::fputs(text.toLocal8Bit().constData(), to);
    exitCode = code;
    return std::nullopt;
}

} // namespace

std::optional<Options> ReadOptions(int& argc, char** argv, int& exitCode) {
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Searches, configures, monitors, tests and calibrates field I/O modules on a "
        "serial line.");
    const QCommandLineOption demo("demo",
                                  "Start on the simulated line: COM1 is a built-in line of modules, and its "
                                  "settings are kept apart from your own.");
    const QCommandLineOption port(
        "port",
        "COM port N (1 to 8) is DEVICE: a device path, a pseudo-terminal, tcp://HOST:PORT or "
        "rfc2217://HOST:PORT for a port of a device server, replay:FILE for a recording that is played, or "
        "\"demo\" for the simulated line. May be given several times.",
        "N=DEVICE");
    parser.addOptions({demo, port});
    AddRecordingOptions(parser);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    if (!parser.parse(QCoreApplication::arguments()))
        return Stop("kavro: " + parser.errorText() + "\n", stderr, WrongUse, exitCode);
    if (parser.isSet(help))
        return Stop(parser.helpText(), stdout, 0, exitCode);
    if (parser.isSet(version))
        return Stop(QString("kavro %1\n").arg(VersionText), stdout, 0, exitCode);
    if (!parser.positionalArguments().isEmpty())
        return Stop("kavro: Unexpected argument '" + parser.positionalArguments().first() + "'.\n", stderr,
                    WrongUse, exitCode);
    Options options;
    options.Demo = parser.isSet(demo);
    if (options.Demo)
        options.Devices[1] = SimulatedLineDevice;
    try {
        for (const QString& value : parser.values(port)) {
            const auto [number, device] = ParsePortOption(value.toStdString());
            options.Devices[number] = device;
        }
        options.Recording = ReadRecordingOptions(parser, options.Devices);
    } catch (const RuntimeFailure& failure) {
        return Stop(QString("kavro: %1\n").arg(failure.what()), stderr, WrongUse, exitCode);
    }
    return options;
}

} // namespace kavro
