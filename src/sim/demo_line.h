#pragma once

#include "sim/simulated_line.h"

namespace kavro {

/// The built-in line to try the system on: a module of every model and one of an unknown model, most of them
/// at 9600 baud on addresses 1 to 24, others at 19200, 38400 and 115200; some with checksum; one 8250 in its
/// initialisation state.
SimulatedLine DemoLine();

} // namespace kavro
