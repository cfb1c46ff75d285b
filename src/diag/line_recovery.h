#pragma once

#include "link/line.h"

#include <cstdint>
#include <functional>

namespace kavro {

/// What to do when the port of a line fails while something polls it: tell it once, then try to open the port
/// again about once a second until everything works again, less often where a try takes long. One outage is
/// one message, however often the port opens and fails meanwhile.
class LineRecovery {
public:
    /// `changed` is called when an outage begins, before it is told, and when it is over.
    LineRecovery(Line& line, std::function<void(bool lost)> changed);

    /// Runs `operation`. Any failure in it begins an outage and is thrown on; during one it is swallowed and
    /// the result is false.
    bool Attempt(const std::function<void()>& operation);

    /// Whether the line can be spoken to. During an outage this opens the port, at most once a second; a
    /// failure to do so is swallowed.
    bool Ready();

    /// Tells that everything to be done has been done: an outage is over.
    void Succeeded();

    bool Lost() const { return lost_; }

private:
    Line& line_;
    std::function<void(bool)> changed_;
    bool lost_ = false;
    std::int64_t nextTry_ = 0; // moment of the line's clock, ms
};

} // namespace kavro
