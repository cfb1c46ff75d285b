#pragma once

#include <span>
#include <string_view>

namespace kavro {

/// A command of a module and what is known of it: the one description that strict reading and words share.
struct CommandForm {
    char Lead;                     ///< in front of the address
    std::string_view Tail;         ///< behind it: n is a digit, p a port, and * whatever a command writes
    std::string_view Reply;        ///< the good reply, in the letters of `FitsForm`
    std::string_view Asks = {};    ///< words for the command, with the fields of `FilledIn`; empty: none
    std::string_view Answers = {}; ///< words for the reply's data; empty: "done" for a reply without data,
                                   ///< else what the form's letter says
    std::string_view Suffix = {};  ///< of this model alone; empty: of every model of the family
};

/// Commands that every model has. A row of the model's own table comes before them.
std::span<const CommandForm> CommonCommands();

/// The other commands of a model; none for an unknown one. The first row that a command is of counts.
std::span<const CommandForm> CommandsOf(std::string_view model);

/// The tables of all families, `CommonCommands` last.
std::span<const std::span<const CommandForm>> AllCommands();

} // namespace kavro
