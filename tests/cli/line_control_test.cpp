#include "cli/line_control.h"

#include "sim/played.h"

namespace kavro {
namespace {

TEST(LineControl, AnswersEveryLine) {
    SimulatedLine line;
    line.Add(MakeModule("8210", 5));
    line.Add(MakeModule("8250", 1, 19200, true));
    const std::string tooLong = "list" + std::string(1'000'000, ' ');
    const std::pair<std::string, const char*> steps[] = {
        {"off 05H", "ok"},
        {"off 5 ", "ok"},
        {"new 8210", "ok #2"},
        {"off 1", "error: These have the address 1: #1, #2. Name one by its number."},
        {"init #1\r", "ok"},
        {"list", "#0 address 5, 9600 baud, no checksum, off: 8210\n"
                 "#1 address 1, 19200 baud, checksum, init: 8250\n"
                 "#2 address 1, 9600 baud, no checksum, init: 8210\nok"},
        {"on #2", "ok"},
        {"on 2", "error: No module has the address 2. See list."},
        {"on #3", "error: No module has the number #3. See list."},
        {"on #-1", "error: No module has the number #-1. See list."},
        {"on #", "error: No module has the number #. See list."},
        {"on 300", "error: '300' is not an address"},
        {"on", "error: \"on\" is not understood"},
        {"on 5 1", "error: \"on 5 1\" is not understood"},
        {"", "error: \"\" is not understood"},
        {"li\x1Bst", "error: \"li?st\" is not understood"},
        {"list 5", "error: \"list 5\" is not understood"},
        {"new 8999", "error: There is no model 8999"},
        {tooLong, "error: The line is too long."}};
    LineControl control(line);
    for (const auto& [text, start] : steps) {
        EXPECT_TRUE(control.Take(text.empty() ? " " : text).empty());
        std::string answers;
        for (const std::string& answer : control.Take("\n"))
            answers += (answers.empty() ? "" : "\n") + answer;
        EXPECT_TRUE(answers.starts_with(start)) << answers;
    }
    EXPECT_EQ(control.Take("off #2\nof").size(), 1U);
    EXPECT_EQ(control.Take("f #1"), std::vector<std::string>());
    EXPECT_TRUE(line.Modules()[1]->Powered());
    EXPECT_EQ(control.Take(""), std::vector<std::string>{"ok"}) << "the last line needs no end";
    EXPECT_FALSE(line.Modules()[1]->Powered() || line.Modules()[2]->Powered());
}

} // namespace
} // namespace kavro
