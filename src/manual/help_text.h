#pragma once

#include <string>
#include <vector>

namespace kavro {

/// A command, an option or an argument as a help text lists it.
struct HelpEntry {
    std::vector<std::string> Names; ///< of an option all of them, with their dashes, as "-h" and "--help"
    std::string Value;              ///< what an option takes, as "FILE"; empty: nothing
    std::string Text;               ///< on one line

    bool operator==(const HelpEntry&) const = default;
};

/// The help text of a program, or of one of its commands.
struct HelpText {
    std::string Usage;       ///< behind "Usage: "
    std::string Description; ///< with its lines and empty lines
    std::vector<HelpEntry> Commands, Options, Arguments;
};

/// Reads what `--help` prints, of QCommandLineParser or in its form. This text is what the programs tell of
/// themselves: the parser hands its options out in no other way. Throws `RuntimeFailure` when it is none.
HelpText ParseHelp(const std::string& text);

/// A program with the help of each of its commands, in their order.
struct ProgramHelp {
    std::string Name;
    HelpText Own;
    std::vector<HelpText> Commands; ///< one for each of `Own.Commands`
};

/// Runs the program at `path` with `--help`, and so each of its commands. Throws `RuntimeFailure` when that
/// fails.
ProgramHelp ReadProgramHelp(const std::string& path);

} // namespace kavro
