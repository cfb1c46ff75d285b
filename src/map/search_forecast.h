#pragma once

#include "link/clock.h"

#include <cstdint>

namespace kavro {

/// How far a search has come, and how long it still takes: what the steps to come take on a silent line, as
/// measured so far, and what modules like those found so far will make of it.
class SearchForecast {
public:
    explicit SearchForecast(Clock& clock) : clock_(&clock) {}

    /// A search begins that takes `silentMs` when nothing answers.
    void Begin(double silentMs);

    /// A step has ended that takes `silentMs` when nothing answers. `found`: something did.
    void Step(double silentMs, bool found);

    /// 0 to 1.
    double Share() const;

    /// Milliseconds from now on; 0 when the search should have ended.
    std::int64_t LeftMs() const;

private:
    struct Steps {
        double SilentMs = 0; ///< what they take when nothing answers
        double TookMs = 0;
        int Count = 0;
    };

    double LeftAfterStep() const;

    Clock* clock_;
    double totalMs_ = 0;
    Steps silent_, found_;
    std::int64_t steppedAt_ = 0; // us, end of the last step
};

} // namespace kavro
