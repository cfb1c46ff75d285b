#pragma once

#include "sim/simulated_line.h"

#include <string>

namespace kavro {

/// Reads the description of a simulated line from a JSON file:
///
///     {"seed": 1,
///      "faults": {"noise": true},
///      "modules": [{"model": "8250", "address": 3, "baud": 9600, "checksum": true,
///                   "initialisation": false, "range": "08", "format": 0, "revision": "A1.20",
///                   "faults": {"silent": false, "delay": 50}}]}
///
/// Of a module only model and address must be given; the rest is as it leaves the factory. "range" is two
/// hexadecimal digits. The faults are "silent", "delay" (ms), "wrongChecksum", "noCarriageReturn", "noise",
/// "slowCharacters" (ms), "refuse", "wrongAddress" and "unplugged".
///
/// Throws `RuntimeFailure` that names the file and the place in it for everything that is wrong.
SimulatedLine ReadSimulatedLine(const std::string& path);

} // namespace kavro
