#include "terminal/address_rule.h"

#include "support/test_session.h"

namespace kavro {
namespace {

TEST(AddressRule, DecidesBaudRateAndChecksum) {
    ScriptedSession test;
    const struct { std::int16_t Address, BaudCode; } known[] = {{31, 6}, {0, 4}, {31, 1}, {5, 2}, {10, 7}};
    for (int i = 0; i < 5; ++i) {
        test.Session.ModuleTable[i].Address = known[i].Address;
        test.Session.ModuleTable[i].BaudCode = known[i].BaudCode;
    }
    test.Session.ModuleCount = 4; // the last one is no longer known
    // Command, baud code, whether it goes to address 00.
    const std::tuple<const char*, std::int16_t, bool> cases[] = {
        {"$1F2", 6, false}, // the first of two
        {"$1f2", 6, false}, {"#05", 2, false},  {"$5", 2, false},   {"$002", 3, true},   {"$0", 3, true},
        {"%0001", 3, true}, {"$0A2", 3, false}, {"$112", 3, false}, {"~**", 3, false},   {"~", 3, false},
        {"", 3, false},     {"$5 2", 3, false}, {"$-1", 3, false},  {" $1F2", 3, false}, {"$0x1F", 3, false}};
    for (const auto& [command, code, zero] : cases) {
        SCOPED_TRACE(command);
        EXPECT_EQ(TerminalAddressBaud(test.Session, command), code);
        for (const std::int16_t enable : {std::int16_t{0}, std::int16_t{1}}) {
            const SendSettings repeated = {enable, code};
            EXPECT_EQ(TypedCommandSettings(test.Session, command, enable),
                      (zero ? SendSettings{0, code} : repeated));
            EXPECT_EQ(RepeatedCommandSettings(test.Session, command, enable), repeated);
        }
    }
}

} // namespace
} // namespace kavro
