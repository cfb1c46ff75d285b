#include "project/line_report.h"

#include "map/search.h"
#include "project/backup.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

constexpr const char* Check = R"({"modules": [
  {"address": 5, "model": "8250", "sent": 8, "complete": 7, "silent": 0, "damaged": 1, "refused": 0,
   "ms": {"min": 13.4, "median": 15.54, "p95": 17.6, "max": 17.62}}],
 "findings": [
  {"finding": "damaged", "address": 5, "text": "A reply is <damaged>."},
  {"finding": "foreign", "text": "Others talk."}]})";

/// What stands in the file of the demo line at 9600 baud.
LineFile DemoFile() {
    SimulatedSession demo(DemoLine());
    EnableBaudCodes(demo.Session, {3});
    demo.Session.SearchHighAddress = 20;
    NetworkSearch(demo.Session, {}).Run();
    return ReadLine({demo.Session, {demo.Messages, {"the program", "the terminal", "a search"}}},
                    "Boiler & Co")
        .File;
}

void ExpectPieces(const std::string& html, const Lines& pieces) {
    for (const std::string& piece : pieces)
        EXPECT_TRUE(Contains(html, piece));
}

TEST(LineReport, HasEachModuleTagNoteSettingAndFinding) {
    LineFile file = DemoFile();
    SavedModule& module = *ModuleIn(file, 5);
    module.Tags = {"TT-<5>", "Behind the door\n& left"};
    module.Channels[2].Tags = {"TT-102", "spare"};
    module.History = {R"({"ended": "2026-03-02T14:20:31Z", "operator": "A. <Roe>", "result": "fail"})", "{}"};
    std::erase_if(module.Settings, [](const SavedSetting& each) { return each.Name == "channels"; });
    const std::string html =
        ReportHtml(file, ReadCheckText(Check), {"/tmp/a", "COM1: x", "2026-03-02", "J. Doe"});
    ASSERT_GT(file.Modules.size(), 10U);
    for (const SavedModule& each : file.Modules)
        EXPECT_TRUE(Contains(html, each.Model + " at address " + std::to_string(each.Address) + " ("));
    ExpectPieces(html,
                 {"<title>Boiler &amp; Co: commissioning report</title>", "J. Doe",
                  "<h2>TT-&lt;5&gt;, 8250 at address 5 (05H)</h2>", "<p>Behind the door<br>&amp; left</p>",
                  ">2</td><td align=\"left\">TT-102</td>",
                  "Enabled channels</td><td align=\"left\">not told</td>", "2026-03-02 14:20:31 UTC",
                  "A. &lt;Roe&gt;", "fail", "A reply is &lt;damaged&gt;.", "The whole line", "2 findings"});
}

TEST(LineReport, ADamagedCheckIsToldWithItsLine) {
    const TestFolder folder;
    std::string wrong = Check;
    wrong.replace(wrong.find("\"foreign\""), 9, "7");
    const std::pair<std::string, const char*> cases[] = {
        {wrong, "used: line 6: \"finding\" must be a text."},
        {"{\n\"findings\": 1}", "used: line 2: this is no line check"},
        {"[1,\n", "used: line 2: "}};
    for (const auto& [text, piece] : cases) {
        const std::string path = folder.Write("check", text);
        EXPECT_TRUE(Contains(FailureText([&] { LoadCheck(path); }), piece));
    }
}

} // namespace
} // namespace kavro
