#include "monitor/module_values.h"

#include "diag/analog_input_panel.h"
#include "link/text.h"
#include "support/test_session.h"

#include <sstream>

namespace kavro {
namespace {

/// Entry 0 is the module read, at address 10; entry 1 is selected and must not matter.
struct ModuleValuesTest : testing::Test, ScriptedSession {
    ModuleValuesTest() {
        Session.ScanIndex = -1;
        Session.SelectedModule = 1;
        Session.Line.ReplyTimeout = 200;
        Session.Line.SetPortBaud(1, 3, 0, 0, 0); // with its pause, before any time counts
    }

    // The commands sent while these replies (parted by blanks, "-" is silence) come, then the values read.
    std::string Read(const std::string& replies) {
        Port().Queue.clear();
        std::istringstream words(replies);
        for (std::string word; words >> word;)
            Port().Queue.push_back({word == "-" ? "" : word + "\r"});
        Log.clear();
        ModuleReader reader(Session, 0, Enables);
        while (!reader.Done())
            reader.Step();
        EXPECT_EQ(Session.SelectedModule, 1);
        std::string text;
        for (const std::string& entry : Log)
            text += entry.substr(entry.rfind(' ') + 1) + " ";
        for (const auto& [channel, shown, number, unit, state] : reader.Values) {
            EXPECT_EQ(number.has_value(), state == ValueState::Ok);
            text += "|" + channel + "=" + Trim(shown + " " + unit) + " " + StateText(state);
        }
        return text;
    }

    std::optional<unsigned> Enables;
};

TEST_F(ModuleValuesTest, EveryFamilyByItsOwnCommands) {
    const std::tuple<const char*, int, int, const char*, const char*> cases[] = {
        {"8210", 8, 1, ">-050.00", "#0A |0=-5.0000 V ok"},
        {"8230", 34, 3, "!0A05 !0A05 >+038.50 ?0A",
         "$0A6 $0A6 #0A0 #0A2 |0=38.5000 ohms ok|1=ohms disabled|2=ohms error"},
        {"8310", 49, 0, "!0A04.012", "$0A6 |0=4.012 mA ok"},
        {"8310", 49, 1, "!0A+050.00", "$0A6 |0=12.000 mA ok"},
        {"8310", 50, 2, "!0AFFF", "$0A6 |0=10.000 V ok"},
        {"8320", 51, 0, "!0A-07.250 !0B+00.000 !0A+00.500 ?0A >0A+0 !0A+0 !550000",
         "$0A6A $0A6B $0A6B $0A6C $0A6D $0A6D $0A8 "
         "|A=-7.250 V ok|B=0.500 V ok|C=V error|D=V error|IN=55 hex ok"},
        {"8410", 64, 0, "!00A5003C", "$0A6 |IN=3C hex ok|OUT=A5 hex ok"},
        {"8430", 64, 0, "!0F050000", "$0A6 |OUT=0F05 hex ok"},
        {"8490", 64, 0, "!00A50003", "$0A6 |IN=3 hex ok|OUT=A5 hex ok"},
        {"8440", 64, 0, "!00A5003 !00a50003", "$0A6 $0A6 |IN=hex error"},
        {"8460", 64, 0, "!123C05", "$0A8 |A=12 hex ok|B=3C hex ok|CH=0 hex ok|CL=5 hex ok"},
        {"8510", 80, 0, ">FFFFFFFF >0000000A", "#0A0 #0A1 |0=4294967295 ok|1=10 ok"},
        {"8510", 81, 0, ">000003E8 >3E8 >3E8", "#0A0 #0A1 #0A1 |0=1000 Hz ok|1=Hz error"},
        {"8610", 64, 0, "", ""}};
    for (const auto& [model, range, format, replies, read] : cases) {
        ModuleRecord record{.Address = 10, .Model = model, .BaudCode = 3};
        record.InputRange = static_cast<std::int16_t>(range);
        record.DataFormat = static_cast<std::int16_t>(format);
        Session.ModuleTable[0] = record;
        Session.BelievedSince[10] = Session.Line.IncompleteCount;
        Enables.reset();
        EXPECT_EQ(Read(replies), read) << model;
    }
}

// What does not fit is asked for once more, and is never a value.
TEST_F(ModuleValuesTest, DamagedReadings) {
    const std::tuple<int, int, const char*> cases[] = {
        {8, 0, ">+02x222"}, {8, 0, ">+0"},      {8, 0, ">+02.22"}, {8, 0, ">+02.2222"}, {8, 0, ">02.222"},
        {8, 0, "!+02.222"}, {8, 0, ">+2.2222"}, {8, 0, ">+02222"}, {8, 0, ">+92.222"},  {8, 1, ">+02.222"},
        {8, 1, ">+162.22"}, {8, 2, ">7fff"},    {8, 2, ">7FFF0"},  {8, 2, ">+7FF"},     {15, 0, ">+02.222"},
        {9, 0, ">+02.222"}, {8, 0, ">+02.222 "}};
    for (const auto& [range, format, reply] : cases) {
        Session.ModuleTable[0] = {.Address = 10, .Model = "8210", .BaudCode = 3};
        Session.ModuleTable[0].InputRange = static_cast<std::int16_t>(range);
        Session.ModuleTable[0].DataFormat = static_cast<std::int16_t>(format);
        Session.BelievedSince[10] = Session.Line.IncompleteCount;
        Port().Queue = {{std::string(reply) + "\r"}, {std::string(reply) + "\r"}};
        AnalogReading reading{"as before", std::nullopt};
        EXPECT_EQ(ReadInputValue(Session, 0, 0, reading), Answer::Garbled) << reply;
        EXPECT_EQ(reading.Text, "as before");
        EXPECT_TRUE(Port().Queue.empty()) << "asked twice";
    }
    EXPECT_EQ(Session.Line.Statistics.Damaged, 2 * static_cast<int>(std::size(cases)));
}

TEST_F(ModuleValuesTest, OneTimeOutAtMostAndTheMaskIsReadTwiceAlike) {
    Session.ModuleTable[0] = {.Address = 10, .Model = "8230", .BaudCode = 3, .InputRange = 32};
    const std::tuple<const char*, const char*, int> turns[] = {
        {"", "$0A6 |0=C no reply|1=C no reply|2=C no reply", 200},
        {"?0A", "$0A6 |0=C error|1=C error|2=C error", 0},
        {"!0A06 !0A07 !0A05", "$0A6 $0A6 $0A6 |0=C error|1=C error|2=C error", 0},
        {"!0A07 !0A06 !0A06", "$0A6 $0A6 $0A6 #0A1 |0=C disabled|1=C no reply|2=C no reply", 200},
        {"- >+001.00", "$0AM |0=C disabled|1=C no reply|2=C no reply", 200},
        {"!0A8230 >+001.00", "$0AM #0A1 #0A2 |0=C disabled|1=1.0000 C ok|2=C no reply", 200},
        {"!0A8230 >+001.00 >-002.50", "$0AM #0A1 #0A2 |0=C disabled|1=1.0000 C ok|2=-2.5000 C ok", 0},
        {">+001.00 >-002.50", "#0A1 #0A2 |0=C disabled|1=1.0000 C ok|2=-2.5000 C ok", 0}};
    for (const auto& [replies, read, takesMs] : turns) {
        Time.Sleep(500);
        const auto start = Time.GetTickCount();
        EXPECT_EQ(Read(replies), read);
        EXPECT_EQ(Time.GetTickCount() - start, takesMs);
    }
    Time.Sleep(500);
    Read("-");
    const auto start = Time.GetTickCount();
    EXPECT_TRUE(Read("!0A8250 !0A8250").ends_with(" |0=C disabled|1=C error|2=C error"))
        << "another module answers";
    EXPECT_GE(Time.GetTickCount() - start, 400) << "the line must have fallen silent";
    Session.ModuleTable[0].Checksum = 1;
    Enables = 5;
    EXPECT_TRUE(Read("!0A8230 !0A8230").ends_with(" |0=C error|1=C disabled|2=C error")) << "wrong checksum";
}

TEST_F(ModuleValuesTest, OpenSensorsHaveNoValue) {
    Session.ModuleTable[0] = {.Address = 10, .Model = "8260", .BaudCode = 3, .InputRange = 15};
    Session.BelievedSince[10] = 0;
    Enables = 7;
    const std::string rest = "|3=C disabled|4=C disabled|5=C disabled|6=C disabled|7=C disabled";
    EXPECT_EQ(Read("!0A02 >+0012.5 >+0013.5"),
              "$0ABA #0A0 #0A2 |0=12.5000 C ok|1=C open|2=13.5000 C ok" + rest);
    EXPECT_EQ(Read("?0A >+0012.5 >+1370.0 ?0A"),
              "$0ABA #0A0 #0A1 #0A2 |0=12.5000 C ok|1=1370.0000 C ok|2=C error" + rest);
    EXPECT_EQ(Read("!0AX2 !0B02"), "$0ABA $0ABA |0=C error|1=C error|2=C error" + rest);
}

} // namespace
} // namespace kavro
