#pragma once

#include "calib/calibration_target.h"
#include "map/module_command.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// One reading of what is being calibrated.
struct CalibrationReading {
    kavro::Answer Answer = kavro::Answer::NoReply;
    double Value = 0; ///< in the unit of the target
    double Step = 0;  ///< what the last digit of the reply stands for, in that unit
};

/// Reads it once, believing what `AskModule` believes. Throws `RuntimeFailure` when the port fails.
CalibrationReading ReadCalibrated(Session& session, int index, ReadingOf what);

/// What the last digit of a number in that text stands for: 0.01 of "4.00".
double StepOfDigits(const std::string& text);

/// The decimals of such a step, 0 to 6.
int DecimalsOfStep(double step);

/// A number with as many decimals as `step` has, and the user's decimal separator; `sign`: with "+", too.
std::string ShownInSteps(double value, double step, bool sign, const std::string& separator);

/// The last readings in a row, and whether they have come to rest.
class RecentReadings {
public:
    /// Adds a good reading of that moment; another one makes all before it worthless.
    void Add(std::int64_t ms, const CalibrationReading& reading);
    void Clear() { readings_.clear(); }

    /// The last one; null when there is none, or it was not good.
    const CalibrationReading* Last() const { return readings_.empty() ? nullptr : &readings_.back().Reading; }
    /// Whether the last ones differ by no more than the rule for that target allows, for long enough.
    bool Stable(const CalibrationTarget& target) const;

private:
    struct Timed {
        std::int64_t Ms = 0;
        CalibrationReading Reading{};
    };
    std::vector<Timed> readings_;
};

} // namespace kavro
