#include "cli/line_control.h"

#include "link/text.h"
#include "sim/played.h"

namespace kavro {
namespace {

TEST(LineControl, AnswersEveryLine) {
    SimulatedLine line;
    line.Add(MakeModule("8210", 5));
    line.Add(MakeModule("8250", 1, 19200, true));
    const std::pair<std::string, const char*> steps[] = {
        {"off 05H", "ok"},
        {"list", "#0 address 5, 9600 baud, no checksum, off: 8210, "
                 "#1 address 1, 19200 baud, checksum, on: 8250, ok"},
        {"new 8210", "ok #2"},
        {"off 1", "error: These have the address 1: #1, #2. Name one by its number."},
        {"init #1\r", "ok"},
        {"on 2", "error: No module has the address 2. See list."},
        {"on #3", "error: No module has the number #3. See list."},
        {"on #", "error: No module has the number #. See list."},
        {"on", "error: \"on\" is not understood"},
        {" ", "error: \" \" is not understood"},
        {"list 5\x1B", "error: \"list 5?\" is not understood"},
        {"new 8999", "error: There is no model 8999"},
        {"list" + std::string(1'000'000, ' '), "error: The line is too long."}};
    LineControl control(line);
    for (const auto& [text, start] : steps)
        EXPECT_TRUE(Listed(control.Take(text + '\n')).starts_with(start)) << text.substr(0, 80);
    EXPECT_EQ(control.Take("on #2\nof").size(), 1U);
    control.Take("f #1");
    EXPECT_TRUE(line.Modules()[1]->Powered());
    EXPECT_EQ(control.Take(""), std::vector<std::string>{"ok"}) << "the last line needs no end";
    EXPECT_FALSE(line.Modules()[1]->Powered());
    EXPECT_FALSE(line.Modules()[2]->Settings.Initialisation);
}

TEST(LineControl, HoldsSignalsAndLevels) {
    SimulatedLine line;
    for (const auto& [model, address] : {std::pair{"8250", 5}, {"8210", 1}, {"8460", 15}, {"8310", 8}})
        line.Add(MakeModule(model, address));
    const std::pair<const char*, const char*> steps[] = {{"signal 5 -2.5", "ok"},
                                                         {"level 15 A50000", "ok"},
                                                         {"level 1 1", "ok"},
                                                         {"signal 5 2,5", "error: '2,5'"},
                                                         {"level 15 2G", "error: '2G'"},
                                                         {"signal 8 1", "error: Module 8 has"},
                                                         {"level 5 1", "error: Module 5 has"},
                                                         {"signal", "error: \"signal\""}};
    for (const auto& [text, start] : steps)
        EXPECT_TRUE(ControlAnswer(line, text).front().starts_with(start)) << text;
    EXPECT_EQ(line.ModuleAt(5).Hear("#052", 9600, 0), ">-02.500");
    EXPECT_EQ(line.ModuleAt(15).Hear("$0F8", 9600, 0).value_or("").substr(0, 3), "!A5");
    EXPECT_EQ(line.ModuleAt(1).Hear("@01DI", 9600, 0), "!0100001");
    ControlAnswer(line, "signal 5");
    EXPECT_NE(line.ModuleAt(5).Hear("#052", 9600, 0), ">-02.500") << "it moves again";
}

} // namespace
} // namespace kavro
