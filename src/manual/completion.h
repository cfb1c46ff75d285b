#pragma once

#include "manual/help_text.h"

#include <string>
#include <vector>

namespace kavro {

/// How what an option or an argument takes can be completed.
enum class ValueKind {
    None, ///< it takes nothing
    Any,  ///< not at all
    File,
    Folder,
    Rate,
    Rates, ///< separated by commas
    Port,  ///< N=DEVICE
    Words, ///< one of a few
};

/// What an option or an argument takes.
struct CompletionValue {
    ValueKind Kind = ValueKind::None;
    std::string Name;               ///< as the help has it, as "FILE"
    std::vector<std::string> Words; ///< of `ValueKind::Words` and of the rates
    bool Repeated = false;          ///< an argument that may be given several times
};

/// What stands between the angle brackets of an option, or an argument of a usage line: "FILE", "show|set".
CompletionValue ValueOf(const std::string& name);

/// The arguments of a usage line, in their order.
std::vector<CompletionValue> ArgumentsOf(const std::string& usage);

/// What a command or an option does, in the few words of a list.
std::string ShortText(const std::string& text);

/// The rows of the completions' templates for a program: what the shells cannot know. `shell`: "bash", "zsh"
/// or "fish"; `scriptTemplate`: what stands in packaging/completions for it.
std::string Completion(const std::string& shell, const std::string& scriptTemplate, const ProgramHelp& help);

} // namespace kavro
