#pragma once

#include "loop/loop_points.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What the engineer says of a channel.
enum class LoopOutcome : std::uint8_t { Pass, Fail, Skip };

/// "pass", "fail" or "skip".
const char* LoopOutcomeText(LoopOutcome outcome);

/// What came of checking a channel.
struct LoopResult {
    LoopOutcome Outcome = LoopOutcome::Skip;
    std::string Time;                  ///< local, with its distance from UTC
    std::string Person{};              ///< who said so; may be empty
    std::vector<std::string> Values{}; ///< what was read, or driven, in order, with units
};

/// A channel and what is known of it.
struct LoopEntry {
    LoopPoint Point;
    std::string Note{}; ///< of the engineer
    std::optional<LoopResult> Result{};
};

/// An output that is driven, or was when the check was cut off.
struct StandingOutput {
    LoopPoint Point;
    std::string Before; ///< what stood there, in words that a `NamedOutput` takes
};

/// A loop check of a line, which can be left and taken up again.
struct LoopRecord {
    std::string Line;  ///< its name
    std::string Began; ///< as `LoopResult::Time`
    std::vector<LoopEntry> Entries{};
    std::vector<StandingOutput> Standing{}; ///< outputs to be put back
};

/// How many entries have a result.
int DoneCount(const LoopRecord& record);
/// How many have this one.
int CountOf(const LoopRecord& record, LoopOutcome outcome);
/// Whether every entry has passed.
bool AllPassed(const LoopRecord& record);

/// Path of the file beside a line file that keeps its check.
std::string LoopCheckPath(const std::string& linePath);

/// The check as the text of that file; `docs/formats.md` describes it.
std::string LoopRecordText(const LoopRecord& record);

/// The check that is kept at a path; nothing when there is none. Throws `RuntimeFailure` that names the file
/// when it is damaged or of a newer version.
std::optional<LoopRecord> LoadLoopRecord(const std::string& path);

/// A new check of the line; `began` as `LoopResult::Time`. What `before` had driven is still to be put back.
LoopRecord NewLoopRecord(const LineFile& file, const std::string& name, const std::string& began,
                         const std::optional<LoopRecord>& before);

/// A check that was left, with the channels that the line file has now: those that it had keep note and
/// result.
LoopRecord TakenUp(const LoopRecord& before, const LineFile& file);

} // namespace kavro
