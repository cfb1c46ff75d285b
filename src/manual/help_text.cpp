#include "manual/help_text.h"

#include "link/runtime_failure.h"

#include <QFileInfo>
#include <QProcess>

#include <sstream>

namespace kavro {

namespace {

constexpr int PatienceMs = 30'000;
constexpr std::string_view UsageHead = "Usage: ";

struct Heading {
    const char* Line;
    std::vector<HelpEntry> HelpText::*Entries;
};
constexpr Heading Headings[] = {{"Commands:", &HelpText::Commands},
                                {"Options:", &HelpText::Options},
                                {"Arguments:", &HelpText::Arguments}};

// "-h, --help", "--port <N=DEVICE>" or "search".
HelpEntry EntryOf(const std::string& head) {
    HelpEntry entry;
    std::string names = head;
    if (const auto value = head.find(" <"); value != std::string::npos) {
        entry.Value = head.substr(value + 2, head.rfind('>') - value - 2);
        names.resize(value);
    }
    std::size_t begin = 0;
    for (std::size_t comma = 0; (comma = names.find(", ", begin)) != std::string::npos; begin = comma + 2)
        entry.Names.push_back(names.substr(begin, comma - begin));
    entry.Names.push_back(names.substr(begin));
    return entry;
}

// A line of a list: two blanks, the head, at least as many, the text. One that goes on has a blank for a
// head.
void ReadEntryLine(const std::string& line, std::vector<HelpEntry>& entries) {
    constexpr std::size_t Indent = 2;
    if (line.size() <= Indent)
        return;
    std::string text = line.substr(Indent);
    if (text.front() != ' ') {
        const auto end = text.find("  ");
        entries.push_back(EntryOf(text.substr(0, end)));
        text = end == std::string::npos ? "" : text.substr(end);
    }
    const auto begin = text.find_first_not_of(' ');
    if (entries.empty() || begin == std::string::npos)
        return;
    std::string& whole = entries.back().Text;
    whole += (whole.empty() ? "" : " ") + text.substr(begin);
}

std::string HelpOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(PatienceMs) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        throw RuntimeFailure("The help of " + program.toStdString() + " cannot be read. Build it first.");
    return process.readAllStandardOutput().toStdString();
}

} // namespace

HelpText ParseHelp(const std::string& text) {
    if (!text.starts_with(UsageHead))
        throw RuntimeFailure("A help text begins with its usage; this one begins with: " +
                             text.substr(0, text.find('\n')));
    std::istringstream lines(text.substr(UsageHead.size()));
    HelpText help;
    std::getline(lines, help.Usage);
    std::vector<HelpEntry>* entries = nullptr;
    for (std::string line; std::getline(lines, line);) {
        bool heading = false;
        for (const auto& [name, list] : Headings)
            if (line == name) {
                entries = &(help.*list);
                heading = true;
            }
        if (entries == nullptr)
            help.Description += line + "\n";
        else if (!heading)
            ReadEntryLine(line, *entries);
    }
    while (help.Description.ends_with('\n'))
        help.Description.pop_back();
    return help;
}

ProgramHelp ReadProgramHelp(const std::string& path) {
    const QString program = QString::fromStdString(path);
    ProgramHelp help{.Name = QFileInfo(program).baseName().toStdString(),
                     .Own = ParseHelp(HelpOf(program, {"--help"})),
                     .Commands = {}};
    // The parser names the program as it was started.
    help.Own.Usage =
        help.Name + help.Own.Usage.substr(std::min(help.Own.Usage.find(' '), help.Own.Usage.size()));
    for (const HelpEntry& command : help.Own.Commands)
        help.Commands.push_back(
            ParseHelp(HelpOf(program, {QString::fromStdString(command.Names.front()), "--help"})));
    return help;
}

} // namespace kavro
