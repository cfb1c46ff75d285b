#include "cli/terminal_commands.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/command_sender.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "terminal/batch_file.h"

#include <QCommandLineParser>

#include <algorithm>
#include <memory>
#include <vector>

namespace kavro {

namespace {

constexpr char16_t HighestByte = 0xFF;

struct BatchOptions {
    std::string File;
    std::int16_t Passes = 1;
    std::string LogFile; // empty: none
    RunOptions Run{};
};

void AddSendingOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"map",
         "Send each command at the baud rate that the module at its address has in FILE, a map printed by "
         "kavroctl search --json. Commands to other addresses, and all without a map, go at 9600 baud.",
         "FILE"},
        {"baud", "Send every command at RATE instead.", "RATE"},
        {"checksum", "Send with a checksum, and expect one."},
        {"timeout", "Silence after which a reply is given up, in milliseconds, at least 100.", "MS"},
        {"json",
         "Print a JSON array with an object for each command: \"command\", \"reply\", \"complete\" "
         "(false without a whole reply) and \"baud\". The array is whole also when Ctrl+C or a failure ends "
         "the work."},
    });
}

QString Description(const char* what) {
    return QString(what) +
           "\nCtrl+C ends after the reply being awaited.\n\n"
           "Exit codes: 0 every command got its reply, 2 wrong use, 3 port or file trouble, 4 a reply is\n"
           "missing, cut short or has a wrong checksum, or not every command was sent.";
}

SendingOptions ReadSendingOptions(const QCommandLineParser& parser) {
    SendingOptions options;
    options.Checksum = parser.isSet("checksum") ? 1 : 0;
    if (parser.isSet("baud"))
        options.BaudCode = ParseBaud(parser.value("baud").toStdString());
    options.Json = parser.isSet("json");
    return options;
}

// The session that the options describe, with the modules of the map.
std::shared_ptr<CliSession> PreparedSession(const QCommandLineParser& parser) {
    auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (parser.isSet("timeout"))
        cli->Session.Line.LongReplyTimeout = ParseTimeout(parser.value("timeout").toStdString());
    if (parser.isSet("map"))
        UseMap(cli->Session, parser.value("map").toStdString());
    return cli;
}

// A command as the bytes that go on the line.
std::string WireBytes(const QString& command) {
    if (command.contains('\n') || command.contains('\r'))
        throw RuntimeFailure("A command is one line. Give several commands as several arguments.");
    if (command.trimmed().isEmpty())
        throw RuntimeFailure("An empty command cannot be sent. Give one such as '$012'.");
    const auto* wide = std::ranges::find_if(command, [](QChar c) { return c.unicode() > HighestByte; });
    if (wide != command.end())
        throw RuntimeFailure("The command '" + command.toStdString() +
                             "' cannot be sent: modules understand characters of 8 bits only.");
    return command.toLatin1().toStdString();
}

int RunBatch(CliSession& cli, const SendingOptions& options, const BatchOptions& batch) {
    CommandSender sender(cli.Session, options);
    try {
        if (!batch.LogFile.empty())
            sender.OpenLog(batch.LogFile);
    } catch (const RuntimeFailure& failure) {
        PrintNote(failure.what()); // a wrong name, not a failure of the line
        return ExitWrongUse;
    }
    cli.Session.BatchRepeatCount = batch.Passes;
    return sender.SendFile(batch.File, batch.Run);
}

} // namespace

void AddSendOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        Description("Sends commands, one after the other, and prints each with its reply. Put commands in\n"
                    "single quotes, as in '$012'. To address 00 they go without a checksum in any case."));
    parser.addPositionalArgument("COMMAND", "Command to send.", "COMMAND...");
    AddSendingOptions(parser);
}

CommandAction PrepareSend(const QCommandLineParser& parser) {
    const SendingOptions options = ReadSendingOptions(parser);
    std::vector<std::string> commands;
    for (const QString& argument : parser.positionalArguments())
        commands.push_back(WireBytes(argument));
    if (commands.empty())
        throw RuntimeFailure("Give the commands to send, for example '$012'. See kavroctl send --help.");
    return [options, commands, cli = PreparedSession(parser)] {
        return cli->Run([&] { return CommandSender(cli->Session, options).Send(commands); });
    };
}

void AddBatchOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(Description(
        "Sends the lines of a file of commands, with a pause of 100 ms after each and after each\n"
        "pass, of 400 ms after one without a reply, and prints each with its reply."));
    parser.addPositionalArgument("FILE", "Text file with a command on each line.");
    parser.addOptions({
        {"passes", "Send the whole file N times; once unless given.", "N"},
        {"skip-comments", "Pass over blank lines and those that begin with ';' in place of sending them."},
        {"pause", "Pause for MS milliseconds more between two commands.", "MS"},
        {"log", "Write each command to FILE before it is sent; a file that is there is emptied.", "FILE"},
    });
    AddSendingOptions(parser);
}

CommandAction PrepareBatch(const QCommandLineParser& parser) {
    const SendingOptions options = ReadSendingOptions(parser);
    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        throw RuntimeFailure("Give the file of commands to send. See kavroctl batch --help.");
    BatchOptions batch{.File = arguments.first().toStdString(), .LogFile = parser.value("log").toStdString()};
    if (parser.isSet("passes"))
        batch.Passes = ParsePasses(parser.value("passes").toStdString());
    batch.Run.SkipComments = parser.isSet("skip-comments");
    if (parser.isSet("pause"))
        batch.Run.PauseMs = ParseWholeNumber(parser.value("pause").toStdString(), "a pause in milliseconds",
                                             0, LongestBatchPauseMs);
    if (parser.isSet("log") && batch.LogFile.empty())
        throw RuntimeFailure("--log needs the path of a file.");
    if (SameFile(batch.File, batch.LogFile))
        throw RuntimeFailure("The log file would empty the batch file. Give them different names.");
    BatchFile().Open(batch.File); // so that a wrong name is told before anything is touched
    return [options, batch, cli = PreparedSession(parser)] {
        return cli->Run([&] { return RunBatch(*cli, options, batch); });
    };
}

} // namespace kavro
