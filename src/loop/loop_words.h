#pragma once

#include "loop/loop_results.h"

#include <string>
#include <vector>

namespace kavro {

/// Whether a check that was left is to be gone on with: "Go on with the check of DATE, 12 of 40 done, or
/// begin anew?", and which outputs are still to be put back.
std::string GoOnQuestion(const LoopRecord& record);

/// What the check will do, whether outputs may be driven, and which are still to be put back.
std::string BeginQuestion(const LoopRecord& record);

/// What is to be done at a channel of that kind.
const char* LoopTodo(LoopKind kind);
/// What can be done at one that tells no value.
inline constexpr const char* TroubleTodo = "Wait, as it is tried again, or F is fail, S is skip.";

/// "TV-3 (was 4.000)".
std::string StandingText(const StandingOutput& standing);
std::vector<std::string> StandingTexts(const LoopRecord& record);

/// A time of a result as it is shown: "2026-03-02 15:05:09 +01:00".
std::string ShownTime(std::string time);

} // namespace kavro
