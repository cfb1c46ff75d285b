#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// What every calibration dialog shows of its step. A step sets only what is its own; everything else stays
/// as the step before left it.
struct CalibrationView {
    std::int16_t StepNo = 1;
    std::string GuideText;
    bool GuideShown = true;
    bool BackEnabled = false;
    bool NextEnabled = true;
    std::string NextCaption = "Next >";
};

} // namespace kavro
