#pragma once

#include "manual/help_text.h"

#include <string>

namespace kavro {

/// What the completion script of each shell has of a program: commands, options, arguments and what they
/// take. `@PROGRAM@` stands for the program's name, as in the rest of the script.
std::string BashRows(const ProgramHelp& help);
std::string ZshRows(const ProgramHelp& help);
std::string FishRows(const ProgramHelp& help);

} // namespace kavro
