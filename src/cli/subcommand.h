#pragma once

#include <functional>

class QCommandLineParser;

namespace kavro {

/// Exit codes of `kavroctl`.
enum ExitCode : int {
    ExitSuccess = 0,
    ExitDifference = 1,   ///< a line that was checked or compared is not as it should be
    ExitWrongUse = 2,     ///< the command line is wrong; one line on standard error says what
    ExitPortTrouble = 3,  ///< the port, standard output or a file being written failed
    ExitNothingFound = 4, ///< a search that found no module, or did not come to its end
    ExitReplyMissing = 4, ///< commands of which not every one got a complete reply
    ExitNotAccepted = 4,  ///< settings that the module did not tell, or did not accept all of
};

/// The work of a command whose options are understood. Returns the exit code; a `RuntimeFailure` stands for
/// `ExitPortTrouble`.
using CommandAction = std::function<int()>;

/// One command of `kavroctl`. Help is added to each, and the options of a line where it uses one.
struct Subcommand {
    const char* Name = "";
    const char* Help = ""; ///< one line
    int MostArguments = 0; ///< arguments that may stand beside the options
    /// Adds the command's own options and arguments.
    void (*AddOptions)(QCommandLineParser& parser) = nullptr;
    /// Turns options into work, without doing any of it. A `RuntimeFailure` stands for `ExitWrongUse`.
    CommandAction (*Prepare)(const QCommandLineParser& parser) = nullptr;
    bool UsesLine = true; ///< takes the options of `AddLineOptions`
};

} // namespace kavro
