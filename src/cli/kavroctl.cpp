#include "cli/kavroctl.h"

#include "cli/backup_command.h"
#include "cli/check_command.h"
#include "cli/cli_options.h"
#include "cli/cli_text.h"
#include "cli/compare_command.h"
#include "cli/config_command.h"
#include "cli/history_command.h"
#include "cli/interrupt.h"
#include "cli/listen_command.h"
#include "cli/loop_check_command.h"
#include "cli/monitor_command.h"
#include "cli/output_command.h"
#include "cli/read_command.h"
#include "cli/replace_command.h"
#include "cli/report_command.h"
#include "cli/restore_command.h"
#include "cli/search_command.h"
#include "cli/subcommand.h"
#include "cli/terminal_commands.h"
#include "cli/traffic_command.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/product.h"

#include <QCommandLineParser>

#include <algorithm>
#include <climits>

namespace kavro {

namespace {

constexpr Subcommand Subcommands[] = {
    {"search", "Search a line and print its modules.", 0, AddSearchOptions, PrepareSearch},
    {"send", "Send commands and print their replies.", INT_MAX, AddSendOptions, PrepareSend},
    {"batch", "Send a file of commands, line by line, and print the replies.", 1, AddBatchOptions,
     PrepareBatch},
    {"config", "Show or change the settings of a module.", INT_MAX, AddConfigOptions, PrepareConfig},
    {"read", "Read the values of a module.", 1, AddReadOptions, PrepareRead},
    {"monitor", "Read the modules of a line in rounds.", 0, AddMonitorOptions, PrepareMonitor},
    {"history", "Print the values that a monitor has kept.", 1, AddHistoryOptions, PrepareHistory, false},
    {"check", "Ask the modules of a line again and again, and tell what is wrong.", 0, AddCheckOptions,
     PrepareCheck},
    {"backup", "Read all settings of a line into a file.", 1, AddBackupOptions, PrepareBackup},
    {"compare", "Compare a line with its file.", 1, AddCompareOptions, PrepareCompare},
    {"restore", "Write the settings of a file back to the line.", 1, AddRestoreOptions, PrepareRestore},
    {"report", "Write the commissioning report of a line from its file.", 2, AddReportOptions, PrepareReport},
    {"replace", "Give a new module the settings of a dead one.", 2, AddReplaceOptions, PrepareReplace},
    {"loop-check", "Check the channels of a line one by one, with somebody in the field.", 1,
     AddLoopCheckOptions, PrepareLoopCheck},
    {"output", "Drive outputs of a module.", INT_MAX, AddOutputOptions, PrepareOutput},
    {"listen", "Show what another master says, and send nothing.", 0, AddListenOptions, PrepareListen},
    {"traffic", "Print a recording of a line in words.", 1, AddTrafficOptions, PrepareTraffic, false},
};

// The first column of the help: the longest name and two blanks.
constexpr std::size_t NameWidth = [] {
    std::size_t longest = 0;
    for (const Subcommand& command : Subcommands)
        longest = std::max(longest, std::string_view(command.Name).size());
    return longest + 2;
}();

CommandAction Printing(std::string text) {
    return [text = std::move(text)] {
        PrintOut(text);
        return ExitSuccess;
    };
}

std::string ProgramHelp() {
    std::string text = "Usage: kavroctl COMMAND [options]\n"
                       "Works with the modules on a serial line, without a window.\n\nCommands:\n";
    for (const Subcommand& command : Subcommands)
        text += "  " + FixedText(command.Name, NameWidth) + command.Help + "\n";
    return text + "\nOptions:\n"
                  "  -h, --help     Show this help; after a command, the help of that command.\n"
                  "  -v, --version  Show the version.\n";
}

// The parser begins the usage line with the path of the program and does not know the commands.
std::string CommandHelp(const Subcommand& command, const QCommandLineParser& parser) {
    const std::string text = parser.helpText().toStdString();
    return "Usage: kavroctl " + std::string(command.Name) + text.substr(text.find(" [options]"));
}

void ParseArguments(QCommandLineParser& parser, const QStringList& arguments) {
    parser.addOption({{"h", "help"}, "Show this help."});
    // The parser takes its first argument for the name of the program.
    if (!parser.parse(QStringList{"kavroctl"} + arguments))
        throw RuntimeFailure(parser.errorText().toStdString() + " See kavroctl --help.");
}

CommandAction PrepareCommand(const Subcommand& command, const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(command.Help);
    command.AddOptions(parser);
    if (command.UsesLine)
        AddLineOptions(parser);
    ParseArguments(parser, arguments);
    if (parser.isSet("help"))
        return Printing(CommandHelp(command, parser));
    const QStringList beside = parser.positionalArguments();
    if (beside.size() > command.MostArguments)
        throw RuntimeFailure("Unexpected argument '" + beside[command.MostArguments].toStdString() +
                             "'. See kavroctl " + command.Name + " --help.");
    return command.Prepare(parser);
}

CommandAction Prepare(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.addOption({{"v", "version"}, "Show the version."});
    ParseArguments(parser, arguments);
    if (parser.isSet("help"))
        return Printing(ProgramHelp());
    if (parser.isSet("version"))
        return Printing(std::string("kavroctl ") + VersionText + "\n");

    const QStringList words = parser.positionalArguments();
    if (words.isEmpty())
        throw RuntimeFailure("No command given. See kavroctl --help.");
    const std::string name = words.first().toStdString();
    const auto command = std::find_if(std::begin(Subcommands), std::end(Subcommands),
                                      [&](const Subcommand& each) { return name == each.Name; });
    if (command == std::end(Subcommands))
        throw RuntimeFailure("There is no command '" + name + "'. See kavroctl --help.");
    return PrepareCommand(*command, words.mid(1));
}

} // namespace

bool NeedsFonts(std::string_view command) {
    return command == "report" || command == "loop-check";
}

int RunKavroctl(const QStringList& arguments) {
    IgnoreClosedPipes();
    int exitOnFailure = ExitWrongUse;
    try {
        const CommandAction action = Prepare(arguments);
        exitOnFailure = ExitPortTrouble;
        return action();
    } catch (const RuntimeFailure& failure) {
        PrintNote(failure.what());
        return exitOnFailure;
    }
}

} // namespace kavro
