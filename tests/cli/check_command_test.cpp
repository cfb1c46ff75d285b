#include "cli/check_command.h"

#include "cli/captured.h"
#include "map/search.h"
#include "sim/module_factory.h"

#include <QJsonDocument>

#include <csignal>
#include <fstream>

namespace kavro {
namespace {

// A line of two modules that has been searched.
struct CheckedLine : SimulatedSession {
    CheckedLine() {
        Line.Add(MakeModule("8250", 5));
        Line.Add(MakeModule("8410", 7, 9600, true));
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 7;
        NetworkSearch(Session, {}).Run();
    }

    Captured Check(bool json = true) {
        return Capture([&] { return CheckModules(Session, 8, json); });
    }
};

// The first example of docs/formats.md under that heading.
QByteArray Example(const std::string& heading) {
    std::ifstream file(KAVRO_DOCS "/formats.md");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::size_t begin = text.find("```json\n", text.find("\n## " + heading + "\n")) + 8;
    return QByteArray::fromStdString(text.substr(begin, text.find("```", begin) - begin));
}

TEST(CheckCommand, PrintsTheJsonOfTheDocument) {
    CheckedLine test;
    test.Line.ModuleAt(7).OwnFaults.Silent = true;
    const Captured outcome = test.Check();
    EXPECT_EQ(outcome.Exit, 1);
    EXPECT_EQ(QJsonDocument::fromJson(QByteArray::fromStdString(outcome.Out)).toJson(),
              QJsonDocument::fromJson(Example("Line check")).toJson())
        << outcome.Out;
}

TEST(CheckCommand, TellsByItsExitCode) {
    CheckedLine test;
    EXPECT_EQ(test.Check().Exit, 0);
    EXPECT_TRUE(Contains(test.Check(false).Out, "Nothing is wrong."));
    test.Line.Log = [](const LineEvent&) { std::raise(SIGINT); };
    const Captured stopped = test.Check();
    EXPECT_EQ(stopped.Exit, 0);
    EXPECT_EQ(stopped.Err, "kavroctl: Stopped after 0 of 8 passes.\n");
    test.Line.Log = [&test](const LineEvent& event) {
        if (event.Command.starts_with("$07"))
            test.Line.Unplug();
    };
    const Captured lost = test.Check(false);
    EXPECT_TRUE(Contains(lost.Failure, "unplugged"));
    EXPECT_TRUE(Contains(lost.Out, "     5  8250         1         1")) << "what was counted before";
    test.Session.ModuleCount = 0;
    EXPECT_EQ(test.Check().Exit, ExitNothingFound);
    ExpectWrongUse({{{"check", "--passes", "0"}, "a number of passes"},
                    {{"check", "--map", "/nowhere"}, "/nowhere"},
                    {{"check", "--map", "x", "--to", "5"}, "nothing is searched"}});
}

} // namespace
} // namespace kavro
