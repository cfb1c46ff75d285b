#pragma once

#include "loop/loop_points.h"
#include "map/module_command.h"
#include "map/session.h"

#include <string>

namespace kavro {

/// What came of reading an input.
struct LoopReading {
    kavro::Answer Answer = kavro::Answer::NoReply;
    double Number = 0; ///< in the unit of the range; of a level 0 or 1
    std::string Text;  ///< as shown, with its unit: "+05.012 V", "on"
    bool Open = false; ///< the module says that its sensor is open
};

/// Reads an input of entry `index`, which is its module. Throws `RuntimeFailure` when the port fails.
LoopReading ReadLoopInput(Session& session, int index, const LoopPoint& point);

/// Full scale of an input of that entry, in its unit; of a frequency, whose range has no end, what stands for
/// it beside `first`, its first value; 0 of a level.
double LoopFullScale(const ModuleRecord& record, LoopKind kind, double first);

} // namespace kavro
