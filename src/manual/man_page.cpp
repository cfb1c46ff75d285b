#include "manual/man_page.h"

#include "manual/markdown.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace kavro {

namespace {

std::string Title(const PageHead& head) {
    return ".TH " + RoffHeading(head.Name) + " " + std::to_string(head.Section) + " \"\" \"Kavro " +
           head.Version + "\" \"Kavro Administration Utility\"\n.SH NAME\n" + RoffText(head.Name) + " \\- " +
           RoffText(head.Summary) + "\n";
}

std::string SectionText(const PageSection& section, const Documents& documents) {
    const std::string document = documents(section.Document);
    const std::string text =
        section.Heading == nullptr ? document : MarkdownSection(document, section.Heading);
    return (section.Title == nullptr ? "" : std::string(".SH ") + section.Title + "\n") +
           RoffOfMarkdown(text);
}

// "Works with ... ." as a summary: "works with ...".
std::string SummaryOf(const std::string& description) {
    std::string summary = description.substr(0, description.find('\n'));
    if (const auto end = summary.find(". "); end != std::string::npos)
        summary.resize(end);
    if (summary.ends_with('.'))
        summary.pop_back();
    if (!summary.empty())
        summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
    return summary;
}

// A block with an indented line is a table made by hand and stays as it is; any other is a paragraph.
std::string Paragraphs(const std::string& text) {
    std::istringstream lines(text + "\n");
    std::string roff, block;
    bool table = false;
    const auto end = [&] {
        if (!block.empty())
            roff += table ? ".PP\n.EX\n" + block + ".EE\n" : ".PP\n" + block;
        block.clear();
        table = false;
    };
    for (std::string line; std::getline(lines, line);) {
        if (line.empty())
            end();
        else
            block += RoffText(line) + "\n";
        table = table || line.starts_with(' ');
    }
    end();
    return roff;
}

std::string Entry(const HelpEntry& entry) {
    std::string head;
    for (const std::string& name : entry.Names)
        head += (head.empty() ? "" : ", ") + RoffBold(name);
    if (!entry.Value.empty())
        head += " \\fI" + RoffText(entry.Value) + "\\fR";
    return ".TP\n" + head + "\n" + RoffText(entry.Text) + "\n";
}

std::string Entries(const std::vector<HelpEntry>& entries) {
    std::string roff;
    for (const HelpEntry& entry : entries)
        roff += Entry(entry);
    return roff;
}

// The options that most of the commands have in the same words, which need telling but once.
std::vector<HelpEntry> CommonOptions(const std::vector<HelpText>& commands) {
    std::vector<HelpEntry> common;
    for (const HelpText& command : commands)
        for (const HelpEntry& option : command.Options) {
            const auto having = std::ranges::count_if(commands, [&](const HelpText& each) {
                return std::ranges::find(each.Options, option) != each.Options.end();
            });
            if (2 * having > std::ssize(commands) && std::ranges::find(common, option) == common.end())
                common.push_back(option);
        }
    return common;
}

std::string CommandText(const std::string& program, const HelpEntry& command, const HelpText& help,
                        const std::vector<HelpEntry>& common) {
    std::vector<HelpEntry> own;
    std::string others;
    for (const HelpEntry& option : help.Options) {
        if (std::ranges::find(common, option) == common.end())
            own.push_back(option);
        else
            others += (others.empty() ? "" : ", ") + RoffBold(option.Names.back());
    }
    std::string roff = ".SS " + RoffText(program + " " + command.Names.front()) + "\n" +
                       RoffBold(help.Usage) + "\n" + Paragraphs(help.Description) + Entries(help.Arguments) +
                       Entries(own);
    if (!others.empty())
        roff += ".PP\nCommon options: " + others + ".\n";
    return roff;
}

std::string CommandTexts(const ProgramHelp& help) {
    if (help.Commands.empty())
        return {};
    const std::vector<HelpEntry> common = CommonOptions(help.Commands);
    std::string roff = ".SH COMMANDS\n" + Entries(help.Own.Commands);
    for (std::size_t index = 0; index < help.Commands.size(); ++index)
        roff += CommandText(help.Name, help.Own.Commands[index], help.Commands[index], common);
    return roff + ".SH COMMON OPTIONS\n" + Entries(common);
}

} // namespace

std::string ProgramPage(const ProgramHelp& help, const std::string& version,
                        const std::vector<PageSection>& sections, const Documents& documents) {
    std::string roff = Title({help.Name, 1, SummaryOf(help.Own.Description), version});
    roff += ".SH SYNOPSIS\n" + RoffBold(help.Own.Usage) + "\n.SH DESCRIPTION\n";
    roff += Paragraphs(help.Own.Description) + ".SH OPTIONS\n" + Entries(help.Own.Options);
    roff += Entries(help.Own.Arguments) + CommandTexts(help);
    for (const PageSection& section : sections)
        roff += SectionText(section, documents);
    return roff;
}

std::string DocumentPage(const PageHead& head, const std::vector<PageSection>& sections,
                         const Documents& documents) {
    std::string roff = Title(head);
    for (const PageSection& section : sections)
        roff += SectionText(section, documents);
    return roff;
}

} // namespace kavro
