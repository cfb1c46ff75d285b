#pragma once

#include "ports/recording_options.h"

#include <map>
#include <optional>
#include <string>

namespace kavro {

/// What the command line of the program asks for.
struct Options {
    bool Demo = false;                  ///< start on the built-in simulated line
    std::map<int, std::string> Devices; ///< device by COM port number
    RecordingChoice Recording{};
};

/// Reads the command line. Prints help, version or what is wrong, and then returns nothing and sets
/// `exitCode`. Needs no display.
std::optional<Options> ReadOptions(int& argc, char** argv, int& exitCode);

} // namespace kavro
