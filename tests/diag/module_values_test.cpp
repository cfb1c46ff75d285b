#include "diag/module_values.h"

#include "link/text.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

/// Entry 0 is the module read, at address 10; entry 1 is selected and must not matter.
class ModuleValuesTest : public testing::Test {
protected:
    ModuleValuesTest() {
        S.ScanIndex = -1;
        S.SelectedModule = 1;
        S.Line.ReplyTimeout = 200;
    }

    // The values as "channel=text unit state", parted by "|", and the commands sent, parted by blanks.
    std::string Read(const std::deque<ScriptedReply>& replies) {
        Test.Port().Queue = replies;
        std::string text;
        for (const ChannelValue& value : ReadModuleValues(S, 0, Enables)) {
            EXPECT_EQ(value.Number.has_value(), value.State == ValueState::Ok);
            text += value.Channel + "=" + Trim(value.Text + " " + value.Unit) + " " + StateText(value.State) +
                    "|";
        }
        EXPECT_EQ(S.SelectedModule, 1);
        Sent.clear();
        for (const std::string& entry : std::exchange(Test.Log, {}))
            if (!entry.ends_with("n,8,1"))
                Sent += entry.substr(entry.rfind(' ') + 1) + " ";
        return text;
    }

    ScriptedSession Test;
    Session& S = Test.Session;
    std::optional<unsigned> Enables;
    std::string Sent;
};

TEST_F(ModuleValuesTest, EveryFamilyByItsOwnCommands) {
    const struct {
        const char* Model;
        std::int16_t Range, Format;
        std::deque<ScriptedReply> Replies;
        std::string Values, Sent;
    } cases[] = {
        {"8210", 8, 1, {{">-050.00\r"}}, "0=-5.0000 V ok|", "#0A "},
        {"8230",
         0x22,
         3,
         {{"!0A05\r"}, {">+138.50\r"}, {"?0A\r"}},
         "0=138.5000 ohms ok|1=ohms disabled|2=ohms error|",
         "$0A6 #0A0 #0A2 "},
        {"8310", 49, 0, {{"!0A04.012\r"}}, "0=4.012 mA ok|", "$0A6 "},
        {"8310", 49, 1, {{"!0A+050.00\r"}}, "0=12.000 mA ok|", "$0A6 "},
        {"8310", 50, 2, {{"!0AFFF\r"}}, "0=10.000 V ok|", "$0A6 "},
        {"8310", 50, 2, {{"!0Axyz\r"}}, "0=V error|", "$0A6 "},
        {"8320",
         51,
         0,
         {{"!0A+10.000\r"}, {"!0A-07.250\r"}, {"?0A\r"}, {"!0A+00.000\r"}, {"!550000\r"}},
         "A=10.000 V ok|B=-7.250 V ok|C=V error|D=0.000 V ok|IN=55 hex ok|",
         "$0A6A $0A6B $0A6C $0A6D $0A8 "},
        {"8410", 64, 0, {{"!00A5003C\r"}}, "IN=3C hex ok|OUT=A5 hex ok|", "$0A6 "},
        {"8430", 64, 0, {{"!0F050000\r"}}, "OUT=0F05 hex ok|", "$0A6 "},
        {"8490", 64, 0, {{"!00A50003\r"}}, "IN=3 hex ok|OUT=A5 hex ok|", "$0A6 "},
        {"8440", 64, 0, {{"!00A5003\r"}}, "IN=hex error|", "$0A6 "},
        {"8460", 64, 0, {{"!123C05\r"}}, "A=12 hex ok|B=3C hex ok|CH=0 hex ok|CL=5 hex ok|", "$0A8 "},
        {"8510", 80, 0, {{">FFFFFFFF\r"}, {">0000000A\r"}}, "0=4294967295 ok|1=10 ok|", "#0A0 #0A1 "},
        {"8510", 81, 0, {{">000003E8\r"}, {">3E8\r"}}, "0=1000 Hz ok|1=Hz error|", "#0A0 #0A1 "},
        {"8610", 64, 0, {}, "", ""},
        {"8999", 8, 0, {}, "", ""},
    };
    for (const auto& [model, range, format, replies, values, sent] : cases) {
        SCOPED_TRACE(model);
        S.ModuleTable[0] = {
            .Address = 10, .Model = model, .DataFormat = format, .BaudCode = 3, .InputRange = range};
        Enables.reset();
        EXPECT_EQ(Read(replies), values);
        EXPECT_EQ(Sent, sent);
    }
}

TEST_F(ModuleValuesTest, OneTimeOutAtMostAndTheMaskIsAskedOnce) {
    S.ModuleTable[0] = {.Address = 10, .Model = "8230  ", .BaudCode = 3, .InputRange = 0x20};
    const std::string noReply = "0=C no reply|1=C no reply|2=C no reply|";
    const struct {
        std::deque<ScriptedReply> Replies;
        std::string Values, Sent;
        int TakesMs;
    } turns[] = {
        {{}, noReply, "$0A6 ", 1000 + 200}, // the pause of the baud rate, once
        {{{"?0A\r"}}, "0=C error|1=C error|2=C error|", "$0A6 ", 0},
        {{{"!0A06\r"}}, "0=C disabled|1=C no reply|2=C no reply|", "$0A6 #0A1 ", 200},
        {{{">+01.00\r"}}, "0=C disabled|1=1.0000 C ok|2=C no reply|", "#0A1 #0A2 ", 200},
        {{{">+01"}}, "0=C disabled|1=C error|2=C error|", "#0A1 ", 200},
        {{{">+01.00\r"}, {">-02.50\r"}}, "0=C disabled|1=1.0000 C ok|2=-2.5000 C ok|", "#0A1 #0A2 ", 0},
    };
    for (const auto& [replies, values, sent, takesMs] : turns) {
        const auto start = Test.Time.GetTickCount();
        EXPECT_EQ(Read(replies), values);
        EXPECT_EQ(Sent, sent);
        EXPECT_EQ(Test.Time.GetTickCount() - start, takesMs);
    }
    S.ModuleTable[0].Checksum = 1;
    EXPECT_EQ(Read({{">+01.0000\r"}}), "0=C disabled|1=C error|2=C error|") << "wrong checksum";
}

} // namespace
} // namespace kavro
