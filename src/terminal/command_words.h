#pragma once

#include "link/line_listener.h"
#include "map/session.h"

#include <cstdint>
#include <string>

namespace kavro {

/// How a typed command will be sent, and to which module of the list: "Address 05 (8250, TT-101): 9600 baud,
/// with checksum." Says what to do where the module is set up for something else. `checksumEnable` is 1 or 0.
std::string SendingWords(const Session& session, const std::string& command, std::int16_t checksumEnable);

/// What came of a command in words.
struct CommandOutcome {
    std::string Words;   ///< "$052 (05: read configuration): no reply within 400 ms."
    bool Failed = false; ///< no reply, or none that can be read, or a refusal
};

/// What came of the command sent last, by the state of the session's line and how the exchange ended.
/// `batchLine` is the number of its line in a batch file, 0 for one that is not from there.
CommandOutcome OutcomeOf(const Session& session, const std::string& command, TrafficOutcome ended,
                         int batchLine);

} // namespace kavro
