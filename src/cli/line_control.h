#pragma once

#include "sim/simulated_line.h"

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// Carries out one line of kavrosim's control: "off MODULE", "on MODULE", "init MODULE", "signal MODULE
/// VALUE" (held at the analog inputs, in the unit of the range), "level MODULE WORD" (held at the digital
/// inputs, hexadecimal), both without what is held to let them move again, "new MODEL" or "list". MODULE is
/// its own address, where no other module has the same, or "#" and its number on the line, from 0 in the
/// order in which the modules were added. Returns the lines to print: those of the list, and at the end "ok",
/// of a new module with its number, or "error: " and why nothing was done.
std::vector<std::string> ControlAnswer(SimulatedLine& line, std::string_view command);

/// The control of a line by text that comes in pieces. The line must outlive it.
class LineControl {
public:
    explicit LineControl(SimulatedLine& line) : line_(line) {}

    /// Carries out the lines that end in `text` and returns what to print. An empty text is the end, where a
    /// last line needs no end of its own. A line of more than 200 characters is an error.
    std::vector<std::string> Take(std::string_view text);

private:
    SimulatedLine& line_;
    std::string begun_; // the line that has not ended
};

} // namespace kavro
