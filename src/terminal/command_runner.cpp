#include "terminal/command_runner.h"

#include "link/runtime_failure.h"
#include "map/module_access.h"
#include "terminal/address_rule.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace kavro {

namespace {

template <class... Arguments>
void Tell(const std::function<void(Arguments...)>& listener,
          const std::type_identity_t<Arguments>&... arguments) {
    if (listener)
        listener(arguments...);
}

constexpr std::int64_t YieldUs = 20'000; // of a long pause between two looks at the windows

// Whether the file has a further command, which is then its next line.
bool HasCommand(BatchFile& file, const RunOptions& options) {
    if (options.SkipComments)
        file.PassComments();
    return !file.AtEnd();
}

int CountCommands(BatchFile& file, const RunOptions& options) {
    int count = 0;
    for (; HasCommand(file, options); ++count)
        file.ReadLine();
    file.Rewind();
    return count;
}

} // namespace

CommandRunner::CommandRunner(Session& session, CommandEvents events)
    : session_(session), events_(std::move(events)) {}

std::int16_t CommandRunner::CheckSumEnable() const {
    return events_.CheckSumEnable ? events_.CheckSumEnable() : std::int16_t{0};
}

void CommandRunner::Send(const std::string& command, const SendSettings& settings) {
    Tell(events_.Log, command);
    OpenPort(session_.Line);
    session_.Line.Exchange(command, settings.Checksum, events_.BaudCode.value_or(settings.BaudCode),
                           session_.Line.LongReplyTimeout);
    Tell(events_.Show, command, session_.Line.ReplyText);
}

void CommandRunner::SendTyped(const std::string& command) {
    batchLine_ = 0;
    Send(command, TypedCommandSettings(session_, command, CheckSumEnable()));
}

void CommandRunner::Repeat() {
    stop_ = false;
    batchLine_ = 0;
    const std::string command = session_.RepeatCommandText;
    RunProgress progress{.Commands = session_.RepeatCommandCount};
    while (progress.Command < progress.Commands && !stop_) {
        Send(command, RepeatedCommandSettings(session_, command, CheckSumEnable()));
        ++progress.Command;
        Tell(events_.Progress, progress);
        Pause();
    }
}

void CommandRunner::SendBatchLine(BatchFile& file) {
    batchLine_ = file.LineNumber();
    const std::string command = file.ReadLine();
    Send(command, RepeatedCommandSettings(session_, command, CheckSumEnable()));
}

void CommandRunner::Run(BatchFile& file, const RunOptions& options) {
    stop_ = false;
    file.Rewind(); // wherever stepping stood
    RunProgress progress{
        .Pass = 0, .Passes = session_.BatchRepeatCount, .Commands = CountCommands(file, options)};
    if (options.SkipComments && progress.Commands == 0)
        throw RuntimeFailure("The batch file has no command: all of its lines are comments or blank.");
    while (progress.Pass < progress.Passes && !stop_) {
        ++progress.Pass;
        RunPass(file, options, progress);
        file.Rewind();
        // Lets events run here too: an empty file could not be stopped otherwise.
        if (!stop_)
            Pause();
    }
}

void CommandRunner::RunPass(BatchFile& file, const RunOptions& options, RunProgress& progress) {
    progress.Command = 0;
    while (!stop_ && HasCommand(file, options)) {
        if (options.PauseMs > 0 && (progress.Pass > 1 || progress.Command > 0)) {
            progress.Pausing = true;
            Tell(events_.Progress, progress);
            PauseBetween(options.PauseMs);
            progress.Pausing = false;
        }
        if (stop_)
            return;
        SendBatchLine(file);
        ++progress.Command;
        progress.Line = batchLine_;
        Tell(events_.Progress, progress);
        Pause();
    }
}

// Windows live, and `Stop` counts, also in a long one.
void CommandRunner::PauseBetween(int milliseconds) {
    Clock& clock = session_.Line.Time();
    const std::int64_t end = clock.Microseconds() + std::int64_t{1000} * milliseconds;
    while (!stop_ && clock.Microseconds() < end) {
        clock.SleepUntil(std::min(end, clock.Microseconds() + YieldUs));
        Tell(events_.Yield);
    }
}

void CommandRunner::Pause() {
    session_.Line.Time().Sleep(CommandPauseMs);
    Tell(events_.Yield);
}

} // namespace kavro
