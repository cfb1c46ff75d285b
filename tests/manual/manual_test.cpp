#include "manual/completion.h"
#include "manual/help_text.h"
#include "manual/markdown.h"
#include "support/failure_text.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include <gtest/gtest.h>

namespace kavro {
namespace {

constexpr const char* Programs[] = {KAVRO_PROGRAM, KAVROCTL_PROGRAM, KAVROSIM_PROGRAM};

std::string Written(const std::string& name) {
    QFile file(KAVRO_MANUAL "/" + QString::fromStdString(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return file.readAll().toStdString();
}

std::string OutputOf(const QString& program, const QStringList& arguments, int exit = 0) {
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == exit) << program.toStdString();
    return process.readAll().toStdString();
}

// From `head` to the next such head, or to the end.
std::string Part(const std::string& text, const std::string& head, const std::string& next) {
    const auto begin = text.find(head);
    EXPECT_NE(begin, std::string::npos) << head;
    return begin == std::string::npos ? "" : text.substr(begin, text.find(next, begin + head.size()) - begin);
}

// What the group of the pattern holds, wherever it fits.
std::vector<std::string> Found(const std::string& text, const char* pattern) {
    std::vector<std::string> found;
    for (const auto& match : QRegularExpression(pattern).globalMatch(QString::fromStdString(text)))
        found.push_back(match.captured(1).toStdString());
    return found;
}

// The options in a help text, found without the reader that the pages are written with.
std::vector<std::string> OptionsIn(const std::string& help) {
    std::vector<std::string> options = Found(help, R"((?:\n  |, )(--?[a-z][a-z0-9-]*)(?=[ ,]))");
    EXPECT_GE(options.size(), 2U) << help;
    return options;
}

bool HasEntry(const std::string& page, const std::string& name) {
    for (std::size_t place = 0; (place = page.find("\n.TP\n", place)) != std::string::npos; ++place)
        if (Contains(page.substr(place + 5, page.find('\n', place + 5) - place - 5), name))
            return true;
    return false;
}

struct Scripts {
    std::string Page, Common, Bash, Zsh, Fish;
};

// What is said of one command.
Scripts CommandPart(const Scripts& whole, const std::string& program, const std::string& command) {
    return {Part(whole.Page, ".SS " + program + " " + RoffText(command) + "\n", "\n.S"),
            Part(whole.Page, ".SH COMMON OPTIONS", "\n.SH"),
            Part(whole.Bash, "    \"" + command + "\")", ";;"),
            Part(whole.Zsh, "\n    " + command + ")\n", ";;"),
            Part(whole.Fish, "'__fish_seen_subcommand_from " + command + "'", "-n __fish_use_subcommand")};
}

void ExpectOptions(const std::string& help, const Scripts& scripts) {
    for (const std::string& option : OptionsIn(help)) {
        const std::string name = option.substr(option.find_first_not_of('-'));
        const std::string bold = RoffBold(option);
        EXPECT_TRUE(HasEntry(scripts.Page + scripts.Common, bold)) << option << scripts.Page;
        EXPECT_TRUE(Contains(scripts.Page, bold) || option == "-h") << option << scripts.Page;
        EXPECT_TRUE(Contains(scripts.Bash, "\"" + option + ":") || Contains(scripts.Bash, " " + option + ":"))
            << option << scripts.Bash;
        EXPECT_FALSE(Found(scripts.Zsh, ("[*'{,](" + option + ")[=}\\[,]").c_str()).empty()) << option;
        EXPECT_TRUE(Contains(scripts.Fish, (option.starts_with("--") ? " -l " : " -s ") + name + " "))
            << option;
    }
}

TEST(Manual, HasEveryCommandAndOptionOfTheHelp) {
    for (const char* path : Programs) {
        const std::string name = QFileInfo(path).baseName().toStdString();
        const Scripts whole{Written(name + ".1"), "", Written("bash/" + name), Written("zsh/" + name),
                            Written("fish/" + name)};
        const std::string help = OutputOf(path, {"--help"});
        ExpectOptions(help, whole);
        const std::string commands =
            help.find("Commands:") == std::string::npos ? "" : Part(help, "Commands:", "\n\n");
        for (const std::string& command : Found(commands, R"(\n  ([a-z-]+) )"))
            ExpectOptions(OutputOf(path, {QString::fromStdString(command), "--help"}),
                          CommandPart(whole, name, command));
    }
}

TEST(Manual, IsWellFormed) {
    const QString groff = QStandardPaths::findExecutable("groff");
    for (const char* page :
         {"kavro.1", "kavroctl.1", "kavrosim.1", "kavro-settings.5", "kavro-formats.5", "kavro-line.5"})
        if (const QString path = KAVRO_MANUAL "/" + QString(page); groff.isEmpty())
            EXPECT_TRUE(Written(page).starts_with(".TH "));
        else // a warning would stand among what is printed
            EXPECT_FALSE(Contains(OutputOf(groff, {"-ww", "-man", "-Kutf8", "-Tutf8", path}), "warning"))
                << page;
    for (const QString shell : {"bash", "zsh", "fish"}) {
        if (QStandardPaths::findExecutable(shell).isEmpty())
            continue;
        for (const char* name : {"kavro", "kavroctl", "kavrosim"})
            EXPECT_EQ(OutputOf(shell, {"-n", KAVRO_MANUAL "/" + shell + "/" + name}), "") << name;
    }
}

// What bash-completion hands the script, with the words typed so far.
TEST(Manual, CompletesInBash) {
    const std::pair<QString, const char*> cases[] = {
        {"con", "config"},
        {"config --json ", "show set"},
        {"config show 5 --checks", "--checksum"},
        {"search --baud 9600,192", "9600,19200"},
        {"search --baud=9600,192", "9600,19200"},
        {"read --baud 57", "57600"},
        {"search --port 3", "3="},
        {"search --port 1=de", "demo"},
        {"search --to 3 --port=1=rf", "rfc2217://"},
        {"traffic " KAVRO_MANUAL "/kavro-f", KAVRO_MANUAL "/kavro-formats.5"},
        {"search --port 1=replay:" KAVRO_MANUAL "/kavro-f", KAVRO_MANUAL "/kavro-formats.5"},
        {"send ", ""},
    };
    for (const auto& [typed, completed] : cases) {
        const QString script =
            "_get_comp_words_by_ref() { words=(\"${typed[@]}\"); cword=$((${#words[@]} - 1)); "
            "cur=${words[cword]}; prev=${words[cword-1]}; }; compopt() { :; }; source " KAVRO_MANUAL
            "/bash/kavroctl; typed=(kavroctl '" +
            QString(typed).replace(" ", "' '") + "'); _kavroctl; echo \"${COMPREPLY[*]}\"";
        EXPECT_EQ(OutputOf("bash", {"-c", script}), std::string(completed) + "\n") << typed.toStdString();
    }
}

TEST(Manual, ReadsDocumentsAndHelp) {
    EXPECT_EQ(RoffOfMarkdown("# Name\nOne `a-b`\n[two](x.md).\n\n|  | B |\n|---|---|\n| `c|d` | e "
                             "|\n```\n.x 'y'\n```\n## More\n"),
              ".PP\nOne \\fBa\\-b\\fR two.\n.TP\n\\fBc|d\\fR\ne\n.PP\n.RS 4\n.EX\n\\&.x "
              "\\(aqy\\(aq\n.EE\n.RE\n.SH MORE\n");
    EXPECT_THROW(MarkdownSection("# A\n", "B"), RuntimeFailure);
    const HelpText help =
        ParseHelp("Usage: x [options] a|b [FILE...]\nDoes.\n\nOptions:\n  -p, --port <N=DEVICE>  One\n"
                  "                         two.\n\nArguments:\n  FILE   Read.\n");
    EXPECT_EQ(help.Options, (std::vector<HelpEntry>{{{"-p", "--port"}, "N=DEVICE", "One two."}}));
    EXPECT_EQ(help.Arguments, (std::vector<HelpEntry>{{{"FILE"}, "", "Read."}}));
    EXPECT_EQ(ShortText("With --record: replace a file. More."), "replace a file");
}

} // namespace
} // namespace kavro
