#include "cli/captured.h"
#include "cli/key_reader.h"
#include "loop/loop_report.h"
#include "support/program_run.h"

#include <fstream>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kavro {
namespace {

std::string Formats() {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST(LoopCheckCommand, TheExampleOfTheFormatIsWhatIsWritten) {
    const std::string text = Formats();
    const auto begin = text.find("{\n", text.find("## Loop check"));
    const std::string example = text.substr(begin, text.find("```", begin) - begin);
    const TestFolder folder;
    const auto record = LoadLoopRecord(folder.Write("a", example));
    EXPECT_EQ(LoopRecordText(*record), example);
    std::string csv = LoopCsv(*record);
    std::erase(csv, '\r');
    EXPECT_TRUE(Contains(text, csv)) << csv;
    for (const auto& [piece, by] : {std::pair{"\"version\": 1", "\"version\": 2"},
                                    {"analog output", "output"},
                                    {"\"pass\"", "\"passed\""},
                                    {"\"channels\": [", "\"others\": ["}}) {
        std::string damaged = example;
        damaged.replace(damaged.find(piece), std::string(piece).size(), by);
        EXPECT_THROW(LoadLoopRecord(folder.Write("a", damaged)), RuntimeFailure) << by;
    }
}

TEST(LoopCheckCommand, WrongUseSendsNothing) {
    const TestFolder folder;
    const auto line = [&](const char* modules) {
        return QString::fromStdString(
            folder.Write("l" + std::to_string(std::string(modules).size()),
                         std::string(R"({"format":"kavro-line","version":1,"modules":[)") + modules + "]}"));
    };
    ExpectWrongUse({{{"loop-check"}, "Give a line file"},
                    {{"loop-check", line("")}, "have no channels"},
                    {{"loop-check", line(R"({"address":5,"model":"8250"})"), "--report", "a.txt"},
                     "must end in .pdf or"},
                    {{"loop-check", line(R"({"address":5,"model":"8250"})")}, "somebody at a terminal"}});
}

// kavroctl at a terminal of its own.
struct AtTerminal {
    explicit AtTerminal(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), KAVROCTL_PROGRAM);
        std::vector<char*> texts;
        for (std::string& each : arguments)
            texts.push_back(each.data());
        texts.push_back(nullptr);
        Child = forkpty(&Keys, nullptr, nullptr, nullptr);
        if (Child == 0) {
            setenv("XDG_CONFIG_HOME", "/nowhere", 1);
            execv(texts[0], texts.data());
            _exit(127);
        }
    }
    ~AtTerminal() {
        close(Keys);
        kill(Child, SIGKILL);
        waitpid(Child, nullptr, 0);
    }

    // Until that is shown behind what was awaited before.
    void Await(const std::string& piece) {
        pollfd wait = {Keys, POLLIN, 0};
        std::array<char, 1024> bytes{};
        while (!Contains(Shown, piece) && poll(&wait, 1, PatienceMs) == 1) {
            const ssize_t got = read(Keys, bytes.data(), bytes.size());
            if (got <= 0)
                break;
            Shown.append(bytes.data(), static_cast<std::size_t>(got));
        }
        ASSERT_TRUE(Contains(Shown, piece)) << piece << "\n" << Shown;
        Shown.erase(0, Shown.find(piece) + piece.size());
    }

    void Type(const std::string& keys) const {
        EXPECT_EQ(write(Keys, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
    }

    int Keys = -1;
    pid_t Child = -1;
    std::string Shown;
};

TEST(LoopCheckCommand, AnswersAreKeptAndCtrlCPutsBack) {
    const TestFolder folder;
    const std::string path = folder.Path("in/l"), in = folder.Path("in");
    std::filesystem::create_directory(in);
    folder.Write("in/l", R"({"format":"kavro-line","version":1,"modules":[
        {"address":5,"model":"8250","settings":{"channels":[0]},"channels":{"0":{"tag":"TT-1"}}},
        {"address":8,"model":"8310","tag":"TV-2"}]})");
    AtTerminal test({"loop-check", path, "--demo"});
    test.Await("inputs only, Q leave.");
    test.Type("y");
    test.Await(" V ]");
    test.Type("\x1BOP\x1B[B\x1B[12~n"); // F1, Down, F2
    test.Await("Note: _");
    test.Type("a\x1B[Db\n");
    test.Await(" V ]");
    std::filesystem::rename(in, in + "2");
    std::ofstream(in) << "in the way";
    test.Type("ff");
    test.Await("The answer is not kept.");
    std::filesystem::remove(in);
    std::filesystem::rename(in + "2", in);
    test.Type("s");
    for (const char* step : {"driven to 0 %", "driven to 50 %"}) {
        test.Await(step);
        test.Type(*(step + 10) == '0' ? "p" : "\x03");
    }
    test.Await("Left.");
    const auto record = LoadLoopRecord(LoopCheckPath(path));
    EXPECT_EQ(record->Entries[0].Note, "ab");
    EXPECT_EQ(record->Entries[0].Result->Outcome, LoopOutcome::Skip);
    EXPECT_FALSE(record->Entries[1].Result);
    EXPECT_TRUE(record->Standing.empty());
}

TEST(KeyReader, KnowsTheEndOfASequence) {
    for (const char* whole : {"OP", "[B", "[1;5C", "[15~", "[[A", "p"})
        EXPECT_TRUE(IsWholeSequence(whole)) << whole;
    for (const char* piece : {"", "O", "[", "[1;", "[["})
        EXPECT_FALSE(IsWholeSequence(piece)) << piece;
}

TEST(TypedLine, TakesWhatIsTyped) {
    TypedLine typed("a");
    for (const char key : std::string("\xC3\xBC\x7F\x7F"
                                      "b\x01"))
        EXPECT_FALSE(typed.Take(key));
    EXPECT_TRUE(typed.Take('\n'));
    EXPECT_EQ(std::pair(typed.Text, typed.GivenUp), std::pair(std::string("b"), false));
    EXPECT_TRUE(typed.Take('\x1B') && typed.GivenUp);
}

} // namespace
} // namespace kavro
