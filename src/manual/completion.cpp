#include "manual/completion.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "manual/shell_rows.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace kavro {

namespace {

struct NamedKind {
    const char* Name; ///< of a value, in small letters
    ValueKind Kind;
};
// Whoever names the value of a new option so has it completed.
constexpr NamedKind NamedKinds[] = {
    {"file", ValueKind::File},   {"map", ValueKind::File},   {"path", ValueKind::File},
    {"check", ValueKind::File},  {"out", ValueKind::File},   {"folder", ValueKind::Folder},
    {"rate", ValueKind::Rate},   {"list", ValueKind::Rates}, {"n=device", ValueKind::Port},
    {"device", ValueKind::Port},
};

std::vector<std::string> Split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);)
        parts.push_back(part);
    return parts;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t place = 0; (place = text.find(from, place)) != std::string::npos; place += to.size())
        text.replace(place, from.size(), to);
    return text;
}

struct Shell {
    const char* Name;
    std::string (*Rows)(const ProgramHelp& help);
};
constexpr Shell Shells[] = {{"bash", BashRows}, {"zsh", ZshRows}, {"fish", FishRows}};

} // namespace

CompletionValue ValueOf(const std::string& name) {
    if (name.empty())
        return {};
    CompletionValue value{.Kind = ValueKind::Any, .Name = name, .Words = {}};
    if (name.find('|') != std::string::npos) {
        value.Kind = ValueKind::Words;
        value.Words = Split(name, '|');
    }
    std::string lower = name;
    std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const auto& [known, kind] : NamedKinds)
        if (lower == known)
            value.Kind = kind;
    if (value.Kind == ValueKind::Rate || value.Kind == ValueKind::Rates)
        value.Words.assign(BaudNames.begin(), BaudNames.end());
    return value;
}

std::vector<CompletionValue> ArgumentsOf(const std::string& usage) {
    constexpr std::string_view Options = "[options]";
    std::vector<CompletionValue> arguments;
    const auto options = usage.find(Options);
    if (options == std::string::npos)
        return arguments;
    for (std::string word : Split(usage.substr(options + Options.size()), ' ')) {
        const bool repeated = word.find("...") != std::string::npos;
        std::erase_if(word, [](char c) { return c == '[' || c == ']' || c == '.'; });
        if (word.empty())
            continue;
        arguments.push_back(ValueOf(word));
        arguments.back().Repeated = repeated;
    }
    return arguments;
}

std::string ShortText(const std::string& text) {
    // "With --record: replace ..." says most of it behind the colon.
    const auto condition = text.starts_with("With ") ? text.find(": ") : std::string::npos;
    std::string words = condition == std::string::npos ? text : text.substr(condition + 2);
    for (const char* end : {". ", "; ", ": "})
        words.resize(std::min(words.find(end), words.size()));
    if (words.ends_with('.'))
        words.pop_back();
    return words;
}

std::string Completion(const std::string& shell, const std::string& scriptTemplate, const ProgramHelp& help) {
    const auto found = std::ranges::find_if(Shells, [&](const Shell& each) { return shell == each.Name; });
    if (found == std::end(Shells))
        throw RuntimeFailure("There is no completion for the shell " + shell + ".");
    return Replaced(Replaced(scriptTemplate, "@ROWS@", found->Rows(help)), "@PROGRAM@", help.Name);
}

} // namespace kavro
