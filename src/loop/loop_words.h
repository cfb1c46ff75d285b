#pragma once

#include "loop/loop_results.h"

#include <string>

namespace kavro {

/// Whether a check that was left is to be gone on with: "Go on with the check of DATE, 12 of 40 done, or
/// begin anew?", and which outputs are still to be put back.
std::string GoOnQuestion(const LoopRecord& record);

/// What the check will do, and whether outputs may be driven.
std::string BeginQuestion(const LoopRecord& record);

/// A time of a result as it is shown: "2026-03-02 15:05:09".
std::string ShownTime(std::string time);

} // namespace kavro
