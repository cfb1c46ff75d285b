#pragma once

#include "link/line_listener.h"
#include "sim/simulated_line.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// A line that was recorded: each command gets, at the same rate, the replies that it got then, in their
/// order, the last one for ever, an echo included. A command that was never sent gets none. Stray characters
/// are not played. Nothing garbles anything: what is on the recording has been through the wires.
class ReplayedLine : public SimulatedLine {
public:
    /// `delays`: a reply takes the time that it took then, spread evenly from its first character to its last
    /// one; else it is there at once.
    explicit ReplayedLine(const std::vector<LineTraffic>& traffic, bool delays = true);

    /// Called for each command that the recording does not have.
    std::function<void()> NotRecorded = [] {};

    bool HasWires() const override { return false; }

private:
    struct Reply {
        std::string Text;
        std::int64_t FirstUs = 0, LastUs = 0; // since the command
    };
    struct Replies {
        std::vector<Reply> All;
        std::size_t Next = 0;
    };
    using Key = std::pair<int, std::string>; // rate, command without carriage return

    std::vector<TimedByte> Answers(const std::string& command, int baud, std::int64_t moment,
                                   bool disturbed) override;

    std::map<Key, Replies> replies_;
};

} // namespace kavro
