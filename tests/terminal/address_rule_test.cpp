#include "terminal/address_rule.h"

#include "support/test_session.h"

#include <gtest/gtest.h>

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
    const struct {
        const char* Command;
        std::int16_t BaudCode;
        bool ToAddressZero;
    } cases[] = {{"$1F2", 6, false}, // the first of two
                 {"$1f2", 6, false}, {"#05", 2, false},   {"$5", 2, false},   {"$002", 3, true},
                 {"$0", 3, true},    {"%0001", 3, true},  {"$0A2", 3, false}, {"$112", 3, false},
                 {"~**", 3, false},  {"~", 3, false},     {"", 3, false},     {"$5 2", 3, false},
                 {"$-1", 3, false},  {" $1F2", 3, false}, {"$0x1F", 3, false}};
    for (const auto& c : cases) {
        EXPECT_EQ(TerminalAddressBaud(test.Session, c.Command), c.BaudCode) << c.Command;
        for (const std::int16_t enable : {std::int16_t{0}, std::int16_t{1}}) {
            const SendSettings typed = {c.ToAddressZero ? std::int16_t{0} : enable, c.BaudCode};
            const SendSettings repeated = {enable, c.BaudCode};
            EXPECT_EQ(TypedCommandSettings(test.Session, c.Command, enable), typed) << c.Command;
            EXPECT_EQ(RepeatedCommandSettings(test.Session, c.Command, enable), repeated) << c.Command;
        }
    }
}

} // namespace
} // namespace kavro
