#pragma once

#include "link/line.h"

#include <cstdint>
#include <functional>
#include <optional>

class QCommandLineParser;

namespace kavro {

/// How often something is done.
struct Pace {
    int IntervalMs = 0;                      ///< between the beginnings of two turns
    std::optional<int> Turns = std::nullopt; ///< or rounds of them; nothing: until Ctrl+C
    /// How long a lost port is waited for; nothing: for ever, but not at all in a single turn.
    std::optional<int> GiveUpMs = std::nullopt;
};

/// Adds `--give-up`.
void AddGiveUpOption(QCommandLineParser& parser);

/// Reads `--interval`, in milliseconds, which is `fallbackMs` unless given, `--count` into `Turns`, and
/// `--give-up`. Throws `RuntimeFailure` when one is wrong.
Pace ReadPace(const QCommandLineParser& parser, int fallbackMs);

/// What is done in each turn.
struct PollWork {
    std::function<void()> Read;  ///< speaks to modules; a `RuntimeFailure` means that the port has failed
    std::function<bool()> Print; ///< prints what was read; false ends the work
    std::function<bool()> PrintLost = {}; ///< the same of a turn that the lost port left out; may be empty
    /// Whether what was read ends a round, where rounds are counted; empty where turns are.
    std::function<bool()> EndsRound = {};
    /// 0 when something was read, else milliseconds until something is due; empty where it always is.
    std::function<std::int64_t()> IdleMs = {};
};

/// How a polling came to its end.
enum class PollEnd {
    Done,        ///< all turns, or Ctrl+C where no number of them was asked for, or `Print` ended it
    Interrupted, ///< Ctrl+C came before the last of the turns
    PortLost,    ///< the port was lost when Ctrl+C came, or stayed away for too long
};

/// Does the work on an absolute schedule: turns do not drift, and those that are missed because one took
/// longer are left out. Where nothing is due the schedule goes on from when something is. Ctrl+C ends it
/// after the turn at hand, or at once between two turns. A port that fails is told once and opened again as
/// soon as it is there, which leaves the turns between out. Where it is not to be waited for, the failure
/// leaves the function.
PollEnd Poll(Line& line, const Pace& pace, const PollWork& work);

} // namespace kavro
