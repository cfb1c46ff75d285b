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

    /// The steps that follow, of `silentMs` together, go over the line anew at another rate: how many modules
    /// were found until now tells nothing of them. Without this the whole search is one pass.
    void BeginPass(double silentMs);

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
    };
    /// Modules mostly stand together from the first addresses on: such a row tells nothing of what is behind.
    enum class Row { NotYet, Going, Over };

    void Count(double silentMs, bool found);
    double LeftAfterStep() const;
    double FoundToCome() const;

    Clock* clock_;
    double totalMs_ = 0;
    double doneMs_ = 0;
    int steps_ = 0;
    double passMs_ = 0;    // length of the pass
    double passEndMs_ = 0; // what is done when it ends
    int passSteps_ = 0;
    Steps silent_, found_; // but for the first step, which also gets the line going
    Row row_ = Row::NotYet;
    double rowMs_ = 0;           // of the row at the beginning, each as on a silent line
    double behindMs_ = 0;        // of the steps that do not belong to it
    double foundBehindMs_ = 0;   // and of those with a module
    std::int64_t steppedAt_ = 0; // us, end of the last step
};

} // namespace kavro
