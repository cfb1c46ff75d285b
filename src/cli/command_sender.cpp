#include "cli/command_sender.h"

#include "cli/cli_text.h"
#include "cli/subcommand.h"
#include "link/runtime_failure.h"
#include "terminal/batch_file.h"

namespace kavro {

namespace {

std::string Commands(int count) {
    return std::to_string(count) + (count == 1 ? " command." : " commands.");
}

} // namespace

CommandSender::CommandSender(Session& session, const SendingOptions& options)
    : session_(session), printer_(options.Json), runner_(session, Events(options)) {}

CommandEvents CommandSender::Events(const SendingOptions& options) {
    CommandEvents events;
    events.CheckSumEnable = [checksum = options.Checksum] { return checksum; };
    events.BaudCode = options.BaudCode;
    events.Log = [this](const std::string& command) { WriteLog(command); };
    events.Show = [this](const std::string& command, const std::string& reply) { Show(command, reply); };
    events.Progress = [this](const RunProgress& progress) { progress_ = progress; };
    events.Yield = [this] {
        if (EndAsked())
            runner_.Stop();
    };
    return events;
}

void CommandSender::WriteLog(const std::string& command) {
    try {
        log_.Write(command);
    } catch (const RuntimeFailure& failure) {
        logFailed_ = true;
        PrintNote(failure.what());
    }
}

void CommandSender::Show(const std::string& command, const std::string& reply) {
    const bool complete = session_.Line.ReplyStatus != 0;
    ++sent_;
    incomplete_ += complete ? 0 : 1;
    printer_.Print(
        {.Command = command, .Reply = reply, .Complete = complete, .Baud = session_.Line.BaudInUse()});
}

// The command whose reply Ctrl+C did not wait for, when it was sent at all.
void CommandSender::ShowUnfinished() {
    const Line& line = session_.Line;
    if (line.Statistics.Transactions > sent_)
        Show(line.CommandText, line.ReplyText);
}

int CommandSender::Send(const std::vector<std::string>& commands) {
    const auto send = [&] {
        for (const std::string& command : commands)
            if (!EndAsked())
                runner_.SendTyped(command);
    };
    return Run(send, [&] { return sent_ == static_cast<int>(commands.size()); });
}

int CommandSender::SendFile(const std::string& path, const RunOptions& options) {
    BatchFile file;
    const auto send = [&] {
        file.Open(path);
        runner_.Run(file, options);
    };
    return Run(send, [this] {
        const bool atLast = progress_.Pass == progress_.Passes && progress_.Command == progress_.Commands;
        return !runner_.Stopped() || atLast;
    });
}

int CommandSender::Run(const std::function<void()>& send, const std::function<bool()>& allSent) {
    bool interrupted = false;
    try {
        send();
    } catch (const Interruption&) {
        interrupted = true;
        ShowUnfinished();
    } catch (const RuntimeFailure&) {
        printer_.Close();
        throw;
    }
    printer_.Close();
    const bool all = !interrupted && allSent();
    if (!all && !printer_.Abandoned())
        PrintNote("Stopped after " + Commands(sent_));
    if (incomplete_ > 0)
        PrintNote("No complete reply to " + std::to_string(incomplete_) + " of " + Commands(sent_));
    if (logFailed_)
        return ExitPortTrouble;
    return all && incomplete_ == 0 ? ExitSuccess : ExitReplyMissing;
}

} // namespace kavro
