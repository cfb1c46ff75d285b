#pragma once

#include "map/session.h"
#include "terminal/address_rule.h"
#include "terminal/batch_file.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kavro {

/// Pause of a repeat and a run after every command, and of a run after every pass, in ms.
inline constexpr int CommandPauseMs = 100;

/// Longest pause between two lines of a run that can be asked for, in ms.
inline constexpr int LongestBatchPauseMs = 3'600'000;

/// How a batch file is run.
struct RunOptions {
    bool SkipComments = false; ///< comments and blank lines are passed over; else they are sent like any line
    int PauseMs = 0;           ///< between two commands, in addition to `CommandPauseMs`; `Stop` ends it
};

/// How far a repeat or a run is.
struct RunProgress {
    std::int16_t Pass = 1;   ///< from 1
    std::int16_t Passes = 1; ///< of a run; a repeat has one
    int Command = 0;         ///< number of the command just sent in this pass, from 1
    int Commands = 0;        ///< commands of a pass
    int Line = 0;            ///< number of its line in the batch file, from 1; 0 in a repeat
    bool Pausing = false;    ///< the pause that the user asked for goes on

    bool operator==(const RunProgress&) const = default;
};

/// What commands need of who sends them. Every function may stay empty.
struct CommandEvents {
    std::function<std::int16_t()> CheckSumEnable;        ///< 1 or 0, asked for each command
    std::optional<std::int16_t> BaudCode{};              ///< for every command, in place of the address rule
    std::function<void(const std::string& command)> Log; ///< before the command is sent
    std::function<void(const std::string& command, const std::string& reply)> Show;
    std::function<void(const RunProgress& progress)> Progress; ///< after each command of a repeat or a run
    std::function<void()> Yield;                               ///< lets pending events run, after each pause
};

/// Sends the terminal's commands: typed ones, a repeated one, and the lines of a batch file. A module that
/// does not answer gives an empty reply after `LongReplyTimeout`. A `RuntimeFailure` of the port ends a
/// repeat or a run and leaves it.
class CommandRunner {
public:
    CommandRunner(Session& session, CommandEvents events);

    /// Sends a typed command.
    void SendTyped(const std::string& command);

    /// Sends `RepeatCommandText` `RepeatCommandCount` times.
    void Repeat();

    /// Sends the next line of the file.
    void SendBatchLine(BatchFile& file);

    /// Sends every line of the file `BatchRepeatCount` times, from the first line on; leaves the file at its
    /// first line.
    void Run(BatchFile& file, const RunOptions& options = {});

    /// The number of the line in the batch file of the command being sent, from 1; 0 when it is not from one.
    int BatchLine() const { return batchLine_; }

    /// Ends a repeat or a run that is going on before its next command; looked at after each `Yield`.
    void Stop() { stop_ = true; }

    /// Whether the last repeat or run was ended by `Stop`.
    bool Stopped() const { return stop_; }

private:
    std::int16_t CheckSumEnable() const;
    void Pause();
    void RunPass(BatchFile& file, const RunOptions& options, RunProgress& progress);
    void PauseBetween(int milliseconds);
    void Send(const std::string& command, const SendSettings& settings);

    Session& session_;
    CommandEvents events_;
    bool stop_ = false;
    int batchLine_ = 0;
};

} // namespace kavro
