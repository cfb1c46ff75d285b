#pragma once

#include "ports/recording_options.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

class QCommandLineParser;

namespace kavro {

/// Which line a command works on, as the command line says.
struct LineOptions {
    std::optional<std::int16_t> Port;   ///< COM port to work on; nothing: the one in the saved settings
    std::map<int, std::string> Devices; ///< device by COM port
    bool Demo = false;                  ///< COM1 is the simulated line, with settings of its own
    bool RateChosen = false;            ///< the command line chooses a baud rate
    RecordingChoice Recording;
};

/// Adds `--port`, `--demo` and those of a recording, which every command on a line has.
void AddLineOptions(QCommandLineParser& parser);

/// Reads them. Throws `RuntimeFailure` when they are wrong.
LineOptions ReadLineOptions(const QCommandLineParser& parser);

} // namespace kavro
