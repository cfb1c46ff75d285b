#pragma once

#include "link/line.h"

#include <array>

namespace kavro {

/// While one lives, the first Ctrl+C, or request to end the program, is only noted, so that the work at hand
/// can be ended in good order: a transaction of the line that is going on ends with an `Interruption`. A
/// second one ends the program. One at a time.
class InterruptWatch {
public:
    explicit InterruptWatch(Line& line);
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

    /// Whether one came.
    bool Interrupted() const;

private:
    using Handler = void (*)(int);
    Line& line_;
    std::array<Handler, 2> before_{}; // handlers to be put back
};

/// From now on writing into a pipe that nobody reads fails instead of killing the program, so that the port
/// is closed in good order.
void IgnoreClosedPipes();

} // namespace kavro
