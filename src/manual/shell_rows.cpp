#include "manual/shell_rows.h"

#include "manual/completion.h"

namespace kavro {

namespace {

std::string Joined(const std::vector<std::string>& words, const char* separator) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

// Each character of `special` with a backslash before it.
std::string Escaped(const std::string& text, std::string_view special) {
    std::string escaped;
    for (const char c : text) {
        if (special.find(c) != std::string_view::npos)
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

// How the bash script names a kind; it splits such a name at nothing but blanks and colons.
std::string BashKind(const CompletionValue& value) {
    switch (value.Kind) {
    case ValueKind::None:
        return "-";
    case ValueKind::Any:
        return "any";
    case ValueKind::File:
        return "file";
    case ValueKind::Folder:
        return "folder";
    case ValueKind::Rate:
    case ValueKind::Words:
        return Joined(value.Words, "|");
    case ValueKind::Rates:
        return Joined(value.Words, ",");
    case ValueKind::Port:
        return "port";
    }
    return {};
}

// A row of the case of a command; the program itself is the command "".
std::string BashRow(const std::string& command, const HelpText& help) {
    std::string options, arguments;
    for (const HelpEntry& option : help.Options)
        for (const std::string& name : option.Names)
            options += (options.empty() ? "" : " ") + name + ":" + BashKind(ValueOf(option.Value));
    for (const CompletionValue& value : ArgumentsOf(help.Usage))
        arguments += " " + BashKind(value) + (value.Repeated ? "..." : "");
    return "    \"" + command + "\")\n        options=\"" + options + "\"\n        arguments=\"" +
           (arguments.empty() ? "" : arguments.substr(1)) + "\"\n        ;;\n";
}

std::string ZshAction(const CompletionValue& value) {
    switch (value.Kind) {
    case ValueKind::None:
        return {};
    case ValueKind::Any:
        return "()"; // not " ", behind which zsh does not complete an option
    case ValueKind::File:
        return "_files";
    case ValueKind::Folder:
        return "_files -/";
    case ValueKind::Rate:
    case ValueKind::Words:
        return "(" + Joined(value.Words, " ") + ")";
    case ValueKind::Rates:
        return "_sequence compadd - " + Joined(value.Words, " ");
    case ValueKind::Port:
        return "_@PROGRAM@_port";
    }
    return {};
}

// A text between single quotes of zsh or fish.
std::string Quoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string ZshOption(const HelpEntry& option) {
    const CompletionValue value = ValueOf(option.Value);
    std::string end = "[" + Escaped(ShortText(option.Text), "[]\\") + "]";
    if (value.Kind != ValueKind::None)
        end = "=" + end + ":" + Escaped(value.Name, ":\\") + ":" + ZshAction(value);
    if (option.Names.size() > 1) // one of the names goes without the other
        return Quoted("(" + Joined(option.Names, " ") + ")") + "{" + Joined(option.Names, ",") + "}" +
               Quoted(end);
    const std::string several = value.Kind == ValueKind::Port ? "*" : "";
    return Quoted(several + option.Names.front() + end);
}

std::string ZshArguments(const HelpText& help, const std::string& indent) {
    std::string rows = indent + "_arguments -s";
    for (const HelpEntry& option : help.Options)
        rows += " \\\n" + indent + "  " + ZshOption(option);
    int place = 0;
    for (const CompletionValue& value : ArgumentsOf(help.Usage)) {
        const std::string head = value.Repeated ? "*" : std::to_string(++place);
        rows += " \\\n" + indent + "  " +
                Quoted(head + ":" + Escaped(value.Name, ":\\") + ":" + ZshAction(value));
    }
    return rows;
}

std::string FishValue(const CompletionValue& value) {
    switch (value.Kind) {
    case ValueKind::None:
        return {};
    case ValueKind::Any:
        return " -x";
    case ValueKind::File:
        return " -r -F";
    case ValueKind::Folder:
        return " -x -a '(__fish_complete_directories)'";
    case ValueKind::Rate:
    case ValueKind::Words:
        return " -x -a '" + Joined(value.Words, " ") + "'";
    case ValueKind::Rates:
        return " -x -a '(__@PROGRAM@_list " + Joined(value.Words, " ") + ")'";
    case ValueKind::Port:
        return " -x -a '(__@PROGRAM@_ports)'";
    }
    return {};
}

std::string FishOption(const std::string& head, const HelpEntry& option) {
    std::string row = head;
    for (const std::string& name : option.Names)
        row += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    return row + FishValue(ValueOf(option.Value)) + " -d \"" + Escaped(ShortText(option.Text), "\"\\$") +
           "\"\n";
}

// A word of a few is given once; a file can be completed wherever an argument stands.
std::string FishArgument(const std::string& head, const std::string& condition,
                         const CompletionValue& value) {
    if (value.Kind == ValueKind::Words)
        return head + " -n '" + condition + "; and not __fish_seen_subcommand_from " +
               Joined(value.Words, " ") + "'" + FishValue(value) + "\n";
    return value.Kind == ValueKind::File ? head + " -n '" + condition + "' -F\n" : "";
}

std::string FishCommand(const std::string& head, const std::string& condition, const HelpText& help) {
    const std::string when = condition.empty() ? head : head + " -n '" + condition + "'";
    std::string rows;
    for (const HelpEntry& option : help.Options)
        rows += FishOption(when, option);
    for (const CompletionValue& value : ArgumentsOf(help.Usage))
        rows += FishArgument(head, condition, value);
    return rows;
}

std::string FishCommandName(const std::string& head, const HelpEntry& command) {
    return head + " -n __fish_use_subcommand -a " + command.Names.front() + " -d \"" +
           Escaped(command.Text, "\"\\$") + "\"\n";
}

} // namespace

std::string BashRows(const ProgramHelp& help) {
    std::string commands, rows = BashRow("", help.Own);
    for (std::size_t index = 0; index < help.Commands.size(); ++index) {
        const std::string& name = help.Own.Commands[index].Names.front();
        commands += (commands.empty() ? "" : " ") + name;
        rows += BashRow(name, help.Commands[index]);
    }
    return "    commands=\"" + commands + "\"\n    case $1 in\n" + rows + "    esac\n";
}

std::string ZshRows(const ProgramHelp& help) {
    if (help.Commands.empty())
        return ZshArguments(help.Own, "  ") + "\n";
    std::string names, rows;
    for (std::size_t index = 0; index < help.Commands.size(); ++index) {
        const HelpEntry& command = help.Own.Commands[index];
        names += "    " + Quoted(command.Names.front() + ":" + command.Text) + "\n";
        rows += "    " + command.Names.front() + ")\n" + ZshArguments(help.Commands[index], "      ") +
                "\n      ;;\n";
    }
    return "  local -a commands=(\n" + names + "  )\n" + ZshArguments(help.Own, "  ") +
           " \\\n    '1: :->command' '*:: :->arguments' && return\n"
           "  case $state in\n  command)\n    _describe -t commands command commands\n    ;;\n"
           "  arguments)\n    case $words[1] in\n" +
           rows + "    esac\n    ;;\n  esac\n";
}

std::string FishRows(const ProgramHelp& help) {
    const std::string head = "complete -c @PROGRAM@";
    if (help.Commands.empty())
        return FishCommand(head, "", help.Own);
    std::string rows = FishCommand(head, "__fish_use_subcommand", help.Own);
    for (std::size_t index = 0; index < help.Commands.size(); ++index) {
        const HelpEntry& command = help.Own.Commands[index];
        rows += FishCommandName(head, command);
        rows +=
            FishCommand(head, "__fish_seen_subcommand_from " + command.Names.front(), help.Commands[index]);
    }
    return rows;
}

} // namespace kavro
