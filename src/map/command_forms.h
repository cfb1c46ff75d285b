#pragma once

#include "map/command_table.h"

#include <string_view>
#include <vector>

namespace kavro {

/// The form of the good reply to a command of a model: class, then what stands behind it, for example
/// "!AAhh", in the letters of `FitsForm`. `lead` and `tail` are what stands before and behind the address:
/// "$" and "6". Throws `RuntimeFailure` for a command that the model has not.
std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail);

/// The row of a command of a model, or, where `model` is empty, a row of every table that has the command;
/// none for a command that is not known.
std::vector<const CommandForm*> RowsOf(std::string_view model, char lead, std::string_view tail);

/// What a command of the row's form writes: its tail behind the characters that all of them have.
std::string_view WrittenPart(const CommandForm& row, std::string_view tail);

} // namespace kavro
