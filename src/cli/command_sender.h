#pragma once

#include "cli/exchange_printer.h"
#include "cli/interrupt.h"
#include "map/module_command.h"
#include "map/session.h"
#include "terminal/command_log.h"
#include "terminal/command_runner.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// How commands are sent and printed.
struct SendingOptions {
    std::int16_t Checksum = 0;                           ///< 1: send and expect checksums
    std::optional<std::int16_t> BaudCode = std::nullopt; ///< nothing: by the address rule
    bool Json = false;
};

/// Sends commands on the session's open port and prints each with its reply as soon as that is known. Ctrl+C
/// ends the sending after the reply being awaited, as does a standard output that nobody reads any more.
///
/// What sends returns the exit code: success, or a missing reply when a command was not sent or got no
/// complete reply. A `RuntimeFailure` of the port leaves it, with the output whole.
class CommandSender {
public:
    CommandSender(Session& session, const SendingOptions& options);

    /// Logs every command before it is sent. A log that fails later is told once and ends nothing, but the
    /// exit code tells it. Throws `RuntimeFailure` when the file cannot be opened.
    void OpenLog(const std::string& path) { log_.Open(path); }

    /// Sends typed commands.
    int Send(const std::vector<std::string>& commands);

    /// Runs a batch file, `BatchRepeatCount` passes.
    int SendFile(const std::string& path, const RunOptions& options = {});

private:
    CommandEvents Events(const SendingOptions& options);
    void WriteLog(const std::string& command);
    void Show(const std::string& command, const std::string& reply);
    void ShowUnfinished();
    bool EndAsked() const { return watch_.Interrupted() || printer_.Abandoned(); }
    int Run(const std::function<void()>& send, const std::function<bool()>& allSent);

    Session& session_;
    const CarefulTransactions careful_{session_.Line};
    InterruptWatch watch_{session_.Line};
    ExchangePrinter printer_;
    CommandLog log_;
    bool logFailed_ = false;
    int sent_ = 0;
    int incomplete_ = 0; // of those sent
    RunProgress progress_;
    CommandRunner runner_;
};

} // namespace kavro
