#pragma once

#include "sim/simulated_line.h"

#include <QStringList>

#include <cstdint>
#include <string>

namespace kavro {

/// One line of kavrosim's log: seconds since `start` (microseconds), baud rate, command and reply. Characters
/// that are not printable ASCII are written like "<0D>".
std::string LogLine(const LineEvent& event, std::int64_t start);

/// Runs kavrosim with its arguments, the program's name first: serves a simulated line on a pseudo-terminal
/// or over TCP until it is asked to end. Returns the exit code: 0 ended as asked, 2 wrong use, 3 trouble with
/// the line file, the link, the pseudo-terminal or the address to listen at.
int RunKavrosim(const QStringList& arguments);

} // namespace kavro
