#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <array>

namespace kavro {

/// One of the four ports of the 8460, each an input or an output as a whole. The module's lines are a word of
/// 24 bits.
struct DigitalPort {
    const char* Name;
    int FirstLine;          ///< bit of the word that its line 0 is
    int Lines;              ///< number of lines
    unsigned DirectionMask; ///< its bit in the mask of directions; set: the port is an input

    /// Its lines in the word.
    constexpr unsigned Word() const { return ((1U << Lines) - 1) << FirstLine; }
};

inline constexpr std::array<DigitalPort, 4> DigitalPorts = {
    {{"A", 16, 8, 8}, {"B", 8, 8, 4}, {"CH", 4, 4, 2}, {"CL", 0, 4, 1}}};

inline constexpr unsigned AllPortLines = 0xFFFFFF;

/// Reads the mask of directions of entry `index` ("$AA6" -> "!MM00", without address). On failure
/// `directions` stays as it is.
Answer ReadPortDirections(Session& session, int index, unsigned& directions);

/// Reads the word of levels ("$AA8" -> "!PPPPPP", without address). On failure `levels` stays as it is.
Answer ReadPortLevels(Session& session, int index, unsigned& levels);

/// Switches all of `lines` (a mask of the word) on or off and leaves the other outputs as the module reports
/// them at this moment ("$AA8", then "@AADO" and six digits; the module ignores lines of input ports).
/// Nothing is sent when the levels cannot be read.
Answer SwitchPortLines(Session& session, int index, unsigned lines, bool on);

} // namespace kavro
