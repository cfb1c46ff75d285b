#include "map/exchange_words.h"

#include "link/line.h"
#include "map/command_table.h"
#include "map/reply_forms.h"
#include "sim/virtual_clock.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

// A map of modules at 1, 2, ... as `Models` lists them, and one in its initialisation state at 00.
class ExchangeWordsTest : public testing::Test {
protected:
    ExchangeWordsTest() {
        struct Listed {
            const char* Model;
            std::int16_t Range, Format;
        };
        constexpr Listed listed[] = {
            {"8250", 8, 0},    {"8210", 0x0F, 1}, {"8310", 0x30, 0}, {"8320", 0x33, 0}, {"8410", 0x40, 0},
            {"8460", 0x40, 0}, {"8510", 81, 0},   {"8610", 0, 3},    {"8230", 0x20, 3}, {"8240", 8, 2},
            {"8310", 0x31, 2}, {"8480", 0x40, 0}, {"8250", 0x0D, 0}};
        for (const Listed& module : listed) {
            ModuleRecord& record = Session.ModuleTable[Session.ModuleCount];
            record.Address = ++Session.ModuleCount;
            record.Model = FixedText(module.Model, 6);
            record.InputRange = module.Range;
            record.DataFormat = module.Format;
        }
        Session.ScanIndex = 12; // speaks at 00 and calls itself 0D
    }

    VirtualClock Clock;
    kavro::Session Session{{}, Clock};
};

struct Exchange {
    std::string Sent, Received, Asked, Answered;
};

std::string Checked(const std::string& text) {
    return text + ChecksumOf(text) + "\r";
}

TEST_F(ExchangeWordsTest, TellWhatEachFamilyIsAskedAndAnswers) {
    const Exchange exchanges[] = {
        {"$012", "!01080600", "01: read configuration",
         "8250: +/- 10V, Engineering Units, 9600 baud, no checksum"},
        {"#013", ">+05.123", "01: read channel 3", "5.123 V"},
        {"#013", ">-00.120", "01: read channel 3", "-0.120 V"},
        {"#013", ">+05.1", "01: read channel 3", ""}, // cut
        {"$0156F", "!01", "01: enable channels: 0 to 3, 5, 6", "done"},
        {"$016", "!01FF", "01: read enabled channels", "channels: 0 to 7"},
        {"$01BA", "!0100", "01: read channels with an open input", "channels: none"},
        {"%01210A0741", "!21", "01: set address 21, +/- 1V, % of FSR, 19200 baud, checksum", "done"},
        {"%01210A0741", "!01", "01: set address 21, +/- 1V, % of FSR, 19200 baud, checksum", ""},
        {"%01010A0244", "?01", "", "refused by 01"}, // no module has these codes
        {"#02", ">+050.00", "02: read value", "50.00 %"},
        {"@02RL", "!02+0100.0", "02: read low alarm limit", "100.0 C"},
        {"@02PH+0900.0", "!02", "02: set high alarm limit to 900.0 C", "done"},
        {"@02EA2", "!02", "02: set alarm to latch", "done"},
        {"@02DI", "!0210301", "02: read alarms", "alarm momentary, outputs on: low, high, input on"},
        {"@02DO02", "!02", "02: switch alarm outputs on: high", "done"},
        {"$023", ">+0025.3", "02: read cold junction temperature", "25.3 C"},
        {"$029-00A0", "!02", "02: correct cold junction by -160 counts", "done"},
        {"$0A3", "!0A+0012", "0A: read setting 3", "+0012"},
        {"#0A", ">7FFF", "0A: read value", "7FFF"},
        {"#0304.000", ">", "03: set output to 4.000 mA", "done"},
        {"$036", "!0304.000", "03: read output", "4.000 mA"},
        {"#0B7FF", ">", "0B: set output to 7FF", "done"},
        {"$030", "!03", "03: calibrate 4 mA", "done"},
        {"$033FF", "!03", "03: trim output, steps: -1", "done"},
        {"#04A-05.000", ">", "04: set output A to -5.000 V", "done"},
        {"$046B", "!04+01.250", "04: read output B", "1.250 V"},
        {"$048", "!050000", "04: read inputs", "inputs on: 0, 2"},
        {"~04CP01", "!04", "04: set inputs inverted", "done"},
        {"~05CR", "!0510", "05: read polarity", "outputs inverted, inputs not inverted"},
        {"$056", "!0003000E", "05: read inputs and outputs", "outputs on: 0, 1; inputs on: 1 to 3"},
        {"$056", "!0F030000", "05: read inputs and outputs", ""}, // a bit beyond its channels
        {"@05SO0A1", "!05", "05: switch output 10 on", "done"},
        {"@0CDO00FF", "!0C", "0C: switch outputs on: 0 to 7", "done"},
        {"$0C6", "!00010000", "0C: read inputs and outputs", "outputs on: 0"},
        {"$06S05", "!06", "06: set ports of inputs: CL, B", "done"},
        {"$068", "!A5000F", "06: read lines", "A A5, B 00, C 0F"},
        {"#071", ">000004D2", "07: read channel 1", "1234 Hz"},
        {"$072", "!07510604", "07: read configuration",
         "8510: Frequency, gate time 1 s, 9600 baud, no checksum"},
        {"$07B", "!071", "07: read input mode", "photo isolated"},
        {"@07RP", "!070000000A000000FF", "07: read initial counts", "counter 0: 10, counter 1: 255"},
        {"@07DI", "!071002", "07: read alarms", "alarm 0 enabled, alarm 1 disabled, active: 1"},
        {"@07PA00000064", "!07", "07: set alarm limit of counter 0 to 100", "done"},
        {"$0731000F424", "!07", "", ""}, // a digit short
        {"$0731000F42401", "?07", "", "refused by 07"},
        {"$070H0020", "!07", "07: set minimum width at high level to 20 us", "done"},
        {"$071L", "!0708", "07: read low trigger level", "0.8 V"},
        {"$082", "!080076C003", "08: read configuration",
         "8610: RS-485, 9600 baud, other side 19200 baud, no parity, 8 data bits, 1 stop bit, checksum"},
        {"#090", ">+119.40", "09: read channel 0", "119.40 ohms"},
        {"$002", "!0D0D0600", "00: read configuration",
         "8250: +/- 20mA, Engineering Units, 9600 baud, no checksum"},
        {"#000", ">+12.500", "00: read channel 0", "12.500 mA"},
        {"$01F", "!01A2.4", "01: read firmware version", "A2.4"},
        {"$01F", "", "01: read firmware version", ""},
    };
    const KnownModules known(Session);
    for (const auto& [sent, received, asked, answered] : exchanges) {
        const std::string forms[][2] = {{sent, received},
                                        {sent + "\r", received + "\r"},
                                        {sent + "\r", sent + "\r" + received + "\r"}, // echo
                                        {Checked(sent), received.empty() ? "" : Checked(received)}};
        for (const auto& [command, reply] : forms) {
            const ExchangeWords words = WordsOf(command, reply, known);
            EXPECT_EQ(words.Asked, asked) << command;
            EXPECT_EQ(words.Answered, answered) << command << reply;
        }
    }
}

TEST(ExchangeWords, StandInEveryRow) {
    for (const auto& table : AllCommands())
        for (const CommandForm& row : table) {
            const bool broad = row.Tail == "P*" || (row.Lead == '@' && row.Tail == "*"); // what no row names
            const std::string_view data = row.Reply.substr(NamesAddress(row.Reply) ? 3 : 1);
            EXPECT_EQ(row.Asks.empty(), broad) << row.Lead << row.Tail;
            const bool letter = data.size() == 1 && data.front() < 'a';
            EXPECT_EQ(row.Answers.empty(), data.empty() || letter) << row.Lead << row.Tail;
        }
}

TEST(ExchangeWords, OfUnknownModulesAreThoseOfAllFamilies) {
    KnownModules known;
    known.Learn("$06M\r", "!068250\r");
    known.Learn("$07M\r", "!098250\r"); // another module's
    const Exchange exchanges[] = {
        {"$052\r", "!05080600\r", "05: read configuration",
         "+/- 10V, Engineering Units, 9600 baud, no checksum"},
        {"$062\r", "!06080600\r", "06: read configuration",
         "8250: +/- 10V, Engineering Units, 9600 baud, no checksum"},
        {"#063\r", ">+05.123\r", "06: read channel 3", "+05.123"}, // the range is not known
        {"#073\r", ">0000000A\r", "07: read channel 3", "10"},     // as only a counter answers
        {"@05DI\r", "!051000\r", "05: read alarms", "alarm 0 enabled, alarm 1 disabled, active: none"},
        {"~05CR\r", "!0500\r", "05: read polarity", ""}, // of which channels depends on the family
        {"$050\r", "!05\r", "", ""},                     // several calibrations
        {"%0505000640\r", "!05\r", "05: set +/- 15mV, Engineering Units, 9600 baud, checksum", "done"},
        {"$052\r", "!05080600", "05: read configuration", ""},            // cut
        {Checked("$052"), "!0508060000\r", "05: read configuration", ""}, // a wrong checksum
        {Checked("$052"), "", "05: read configuration", ""},
        {"$05M\r", "!068250\r", "05: read model", ""},
        {"$002\r", "!05080600\r", "00: read configuration",
         "+/- 10V, Engineering Units, 9600 baud, no checksum"}, // in its initialisation state
        {"^05XYZ\r", "?05\r", "", "refused by 05"},
        {"$054\r", "", "05: read digital filter", ""}, // "54" is no checksum of "$0"
        {"$24\r", "?24\r", "", "refused by 24"},       // nor "24" of "$"
    };
    for (const auto& [sent, received, asked, answered] : exchanges) {
        const ExchangeWords words = WordsOf(sent, received, known);
        EXPECT_EQ(words.Asked, asked) << sent;
        EXPECT_EQ(words.Answered, answered) << sent << received;
    }
}

// A checksum is never read as data, and a range that the line contradicts is not believed.
TEST_F(ExchangeWordsTest, SayNothingRatherThanWhatIsWrong) {
    const Exchange unknown[] = {{"$125BC\r", "!1210E5\r", "", ""}, {"$125BC\r", "", "", ""}};
    for (const auto& [sent, received, asked, answered] : unknown) {
        const ExchangeWords words = WordsOf(sent, received, {});
        EXPECT_EQ(std::tuple(words.Asked, words.Answered), std::tuple(asked, answered)) << sent;
    }
    EXPECT_EQ(WordsOf("#0250B8\r", ">+05.1239Z\r", KnownModules(Session)).Asked, "");
    const std::pair<Exchange, Exchange> contradicted[] = {
        {{"$012\r", "!010D0600\r", "", ""}, {"#013\r", ">+05.123\r", "01: read channel 3", "+05.123"}},
        {{"%01010D0600\r", "!01\r", "", ""}, {"#013\r", ">+05.123\r", "01: read channel 3", "+05.123"}},
        {{"%01010D0600\r", "?01\r", "", ""}, {"#013\r", ">+05.123\r", "01: read channel 3", "5.123 V"}},
        {{"$012\r", "!01080600\r", "", ""}, {"#013\r", ">+05.123\r", "01: read channel 3", "5.123 V"}},
        {{"$01M\r", "!018260\r", "", ""}, {"#013\r", ">+05.123\r", "01: read channel 3", "+05.123"}},
        {{}, {"#03+050.00\r", ">\r", "03: set output to +050.00", "done"}}, // of another data format
    };
    for (const auto& [before, exchange] : contradicted) {
        KnownModules known(Session);
        known.Learn(before.Sent, before.Received);
        const ExchangeWords words = WordsOf(exchange.Sent, exchange.Received, known);
        EXPECT_EQ(words.Asked, exchange.Asked) << before.Sent << before.Received;
        EXPECT_EQ(words.Answered, exchange.Answered) << before.Sent << before.Received;
    }
    const std::tuple<const char*, const char*, bool> replies[] = {{"$012\r", "!01080600\r", false},
                                                                  {"$012\r", "!02080600\r", true},
                                                                  {"$012\r", "\x01!01080600\r", true},
                                                                  {"$012\r", "?01\r", false},
                                                                  {"$012\r", "", false},
                                                                  {"$01ZZ\r", "!01\r", false}};
    for (const auto& [sent, received, unexpected] : replies)
        EXPECT_EQ(WordsOf(sent, received, KnownModules(Session)).Unexpected, unexpected) << received;
}

TEST_F(ExchangeWordsTest, BearWhateverComes) {
    const KnownModules known(Session);
    const std::string endless(1'000'000, '0');
    for (const std::string& sent :
         {std::string(), std::string("\r"), std::string("$0"), std::string("$ 1\r"), "#0" + endless, endless})
        for (const std::string& received :
             {std::string(), endless, ">+" + endless + "\r", sent + "\r!\xFF\r"})
            EXPECT_EQ(WordsOf(sent, received, known).Answered, "") << sent.size();
    EXPECT_EQ(WordsOf("", "!05\r", known).Address, std::nullopt);
    EXPECT_EQ(WordsOf("$FE?\r", "", known).Address, 0xFE);
    EXPECT_EQ(WordsOf("$0G2\r", "", known).Address, std::nullopt);
}

} // namespace
} // namespace kavro
