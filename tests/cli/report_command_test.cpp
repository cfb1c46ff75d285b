#include "cli/captured.h"
#include "support/program_run.h"

namespace kavro {
namespace {

constexpr const char* File = R"({"format": "kavro-line", "version": 1, "name": "Hall", "modules": [
  {"address": 5, "model": "8250", "settings": {"baud": 9600}}]})";

struct ReportFiles : TestFolder {
    ReportFiles() {
        Write("hall.kavro.json", File);
        Write("check", "{\n\"modules\": [], \"findings\": 0}");
    }
    QString operator()(const char* name) const { return QString::fromStdString(Path(name)); }
};

// The program itself, on a machine without a display.
TEST(ReportCommand, WritesPdfAndHtmlByTheSuffix) {
    const ReportFiles files;
    ProgramRun kavroctl(KAVROCTL_PROGRAM);
    const QStringList facts = {"--demo", "--person", "J. <Doe>"};
    for (const char* name : {"a.pdf", "a.html"}) {
        const Outcome outcome =
            kavroctl.Run(QStringList{"report", files("hall.kavro.json"), files(name)} + facts);
        EXPECT_EQ(std::tuple(outcome.Exit, outcome.Out, outcome.Err), std::tuple(0, "", "")) << name;
    }
    EXPECT_TRUE(files.Read("a.pdf").starts_with("%PDF"));
    const std::string html = files.Read("a.html");
    for (const char* piece : {"COM1: Simulated line", "J. &lt;Doe&gt;", "8250 at address 5 (05H)"})
        EXPECT_TRUE(Contains(html, piece));
    const Outcome unwritten = kavroctl.Run({"report", files("hall.kavro.json"), "/proc/a.pdf"});
    EXPECT_EQ(unwritten.Exit, ExitPortTrouble) << unwritten.Err;
}

TEST(ReportCommand, WrongUseIsTold) {
    const ReportFiles files;
    const QString file = files("hall.kavro.json"), linked = files("same.html");
    std::filesystem::create_symlink(file.toStdString(), linked.toStdString());
    ExpectWrongUse({{{"report", file}, "Give the line file and the report"},
                    {{"report", file, files("a.txt")}, "must end in .pdf or .html"},
                    {{"report", file, linked}, "would replace the file"},
                    {{"report", file, files("a.html"), "--record", files("b")}, "nothing to record"},
                    {{"report", files("check"), files("a.html")}, "line 1: "},
                    {{"report", file, files("a.html"), "--check", files("check")}, "line 2: "}});
    EXPECT_EQ(files.Read("hall.kavro.json"), File);
}

} // namespace
} // namespace kavro
