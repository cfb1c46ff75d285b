#include "cli/captured.h"
#include "cli/key_reader.h"
#include "loop/loop_report.h"

#include <fstream>

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
