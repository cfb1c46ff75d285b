#include "terminal/command_runner.h"

#include "map/module_access.h"
#include "terminal/address_rule.h"

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

int CountLines(BatchFile& file) {
    int count = 0;
    for (; !file.AtEnd(); ++count)
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
    Send(command, TypedCommandSettings(session_, command, CheckSumEnable()));
}

void CommandRunner::Repeat() {
    stop_ = false;
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
    const std::string command = file.ReadLine();
    Send(command, RepeatedCommandSettings(session_, command, CheckSumEnable()));
}

void CommandRunner::Run(BatchFile& file) {
    stop_ = false;
    file.Rewind(); // wherever stepping stood
    RunProgress progress{.Pass = 0, .Passes = session_.BatchRepeatCount, .Commands = CountLines(file)};
    while (progress.Pass < progress.Passes && !stop_) {
        ++progress.Pass;
        RunPass(file, progress);
        file.Rewind();
        // Lets events run here too: an empty file could not be stopped otherwise.
        if (!stop_)
            Pause();
    }
}

void CommandRunner::RunPass(BatchFile& file, RunProgress& progress) {
    progress.Command = 0;
    while (!file.AtEnd() && !stop_) {
        SendBatchLine(file);
        ++progress.Command;
        Tell(events_.Progress, progress);
        Pause();
    }
}

void CommandRunner::Pause() {
    session_.Line.Time().Sleep(CommandPauseMs);
    Tell(events_.Yield);
}

} // namespace kavro
