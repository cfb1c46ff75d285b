#include "map/search.h"
#include "sim/wire_text.h"
#include "support/test_session.h"

#include <iomanip>
#include <sstream>

namespace kavro {
namespace {

/// The groups of a record's fields that are not all zero, but address and model.
std::string Fields(const ModuleRecord& record) {
    std::ostringstream text;
    text << std::setprecision(12);
    const auto put = [&text](const char* name, const auto... values) {
        if (((values != 0) || ...))
            ((text << name), ..., (text << ' ' << values));
    };
    const AlarmInputSettings& input = record.AlarmInput;
    const ConverterSettings& converter = record.Converter;
    const CounterSettings& counter = record.Counter;
    put("set", record.DataFormat, record.BaudCode, record.InputRange, record.Checksum);
    put(" polarity", record.Digital.Polarity);
    put(" alarm", record.LowAlarm, record.HighAlarm, record.AlarmMode, input.AlarmState);
    put(" 8240", input.SignedSetting, input.CodeSetting);
    put(" converter", record.ConverterInterface, record.ConverterParity, record.ConverterStopBits,
        converter.SecondBaudCode, converter.FormatWord, converter.FormatBit13, converter.FormatBit8);
    put(" modes", counter.GateTime, counter.InputMode, counter.GateMode, counter.DigitalFilter);
    put(" levels", counter.MinAtHigh, counter.MinAtLow, counter.TtlAtHigh, counter.TtlAtLow);
    for (const std::size_t i : {0U, 1U})
        put(i == 0 ? " first" : " second", counter.CounterStatus[i], counter.MaxValue[i],
            counter.InitialValue[i], counter.AlarmSetting[i], counter.AlarmValue[i]);
    return text.str();
}

/// A search over COM1, whose replies stand in a script; at 9600 baud unless a test enables other rates.
class SearchTest : public testing::Test {
protected:
    SearchTest() { EnableBaudCodes(S, {3}); }

    /// "9600 $012" gets the reply; with checksum both carry one.
    void Answer(const std::string& command, const std::string& reply, bool checksum = false) {
        const auto line = [checksum](const std::string& text) {
            return checksum ? text + WireHex(WireSum(text), 2) : text;
        };
        Test.Port().Replies["9600 " + line(command)] = {line(reply) + "\r"};
    }

    void Search(std::int16_t highAddress, const SearchEvents& events = {}) {
        S.SearchHighAddress = highAddress;
        NetworkSearch(S, events).Run();
    }

    bool WasSent(const std::string& command) const {
        return std::ranges::find(Test.Log, "COM1 9600 " + command) != Test.Log.end();
    }

    ScriptedSession Test;
    Session& S = Test.Session;
};

TEST_F(SearchTest, CommandsAndEventsInOrder) {
    EnableBaudCodes(S, {3, 5});
    Test.Port().Replies = {
        {"38400 $012", {"!01400800\r"}}, {"38400 $01M", {"!018410\r"}}, {"38400 ~01CR", {"!0110\r"}}};
    const auto note = [this](const std::string& text) { Test.Log.push_back(text); };
    Search(1, {.Address = [&](std::int16_t address) { note("address " + std::to_string(address)); },
               .Baud = [&](std::int32_t baud) { note("baud " + std::to_string(baud)); },
               .Found = [&](int index) { note("found " + S.Device[static_cast<std::size_t>(index)]); },
               .Yield = [&] { note("yield"); }});
    std::string log;
    for (const std::string& entry : Test.Log)
        log += entry + "; ";
    EXPECT_EQ(log, "address 0; baud 9600; COM1 settings 9600,n,8,1; COM1 9600 $002; COM1 9600 $002B6; yield; "
                   "baud 38400; COM1 state 38400,n,8,1; COM1 38400 $002; COM1 38400 $002B6; yield; yield; "
                   "address 1; baud 9600; COM1 settings 9600,n,8,1; COM1 9600 $012; COM1 9600 $012B7; yield; "
                   "baud 38400; COM1 state 38400,n,8,1; COM1 38400 $012; COM1 38400 $01M; COM1 38400 ~01CR; "
                   "found    1(01H)   8410      38400                Digital I/O; yield; ");
    EXPECT_EQ(std::tuple(S.ModuleCount, S.ScanIndex), std::tuple(1, -1));
    EXPECT_EQ(Test.Time.GetTickCount(), 4 * 1000 + 3 * 200);
}

TEST_F(SearchTest, OneThatCannotBeginForgetsNothing) {
    const std::tuple<bool, bool, int, std::string> cases[] = {
        // The port is open, refuses its settings, is lost after so many outputs; what becomes of the list.
        {false, false, 9, "kept"},
        {true, true, 9, "kept"},
        {true, false, 0, "kept"},
        {true, false, 1, "begun "}};
    for (const auto& [open, refuses, outputs, list] : cases) {
        S.Line.PortBaudCode.fill(-1);
        S.Device = {"kept"};
        S.ModuleCount = 1;
        S.ScanIndex = 0;
        Test.Port().PortOpen(open);
        Test.Port().FailSettings = refuses;
        Test.Port().OutputsUntilFailure = outputs;
        std::string begun;
        EXPECT_THROW(Search(9, {.Begun = [&] { begun += "begun "; }}), RuntimeFailure);
        EXPECT_EQ(begun + (S.Device.empty() ? "" : S.Device[0]), list);
        const bool kept = list == "kept";
        EXPECT_EQ(std::tuple(S.ModuleCount, S.ScanIndex), kept ? std::tuple(1, 0) : std::tuple(0, -1));
    }
}

TEST_F(SearchTest, SilentAddressesCostWhatTheAlgorithmNames) {
    // Baud codes, reply time-out, milliseconds of a first search and of the same once more.
    const std::tuple<std::vector<int>, std::int16_t, int, int> cases[] = {
        {{3}, 100, 256 * 200 + 1000, 256 * 200},
        {{3}, 250, 256 * 500 + 1000, 256 * 500},
        {{0, 7}, 100, 256 * (2 * 200 + 2 * 1000), 256 * (2 * 200 + 2 * 1000)},
        {{}, 100, 0, 0}};
    for (const auto& [codes, replyTimeout, first, again] : cases) {
        SimulatedSession test;
        EnableBaudCodes(test.Session, codes);
        test.Session.Line.ReplyTimeout = replyTimeout;
        test.Session.SearchHighAddress = 255;
        NetworkSearch(test.Session, {}).Run();
        EXPECT_EQ(test.Time.GetTickCount(), first);
        NetworkSearch(test.Session, {}).Run();
        EXPECT_EQ(test.Time.GetTickCount(), first + again);
        EXPECT_EQ(test.Session.ModuleCount, 0);
    }
}

TEST_F(SearchTest, AModuleAtAddress00IsListedWhereItReports) {
    const std::string other = "   3(03H)   8410      9600                 Digital I/O";
    const std::string tail = "H)   8410      19200                Digital I/O";
    const std::tuple<std::string, Lines, std::int16_t> cases[] = {
        {"05", {other, "*  5(05" + tail}, 1},
        {"02", {"*  2(02" + tail, other}, 0},
        {"00", {"*  0(00" + tail, other}, 0},
        {"03", {"*  3(03" + tail}, 0}, // in place of the one at 03
        {"07", {other}, -1}};          // above the highest address
    for (const auto& [address, device, scanIndex] : cases) {
        SCOPED_TRACE(address);
        Test.Log.clear();
        Answer("$002", "!" + address + "400740");
        Answer("$00M", "!" + address + "8410");
        Answer("~00CR", "!" + address + "11"); // without checksum although the format byte has it
        Answer("$032", "!03400600");
        Answer("$03M", "!038410");
        Search(6);
        EXPECT_EQ(S.Device, device);
        EXPECT_EQ(S.ScanIndex, scanIndex);
        EXPECT_EQ(S.ModuleCount, static_cast<int>(device.size()));
        EXPECT_EQ(WasSent("$" + address + "2"), address == "00") << "its own address is not probed";
        const std::string fields = scanIndex < 0 ? "" : Fields(S.ModuleTable[scanIndex]);
        EXPECT_EQ(fields, scanIndex < 0 ? "" : "set 0 4 64 1 polarity 3");
    }
    Test.Port().Replies.erase("9600 $002");
    Search(6);
    EXPECT_EQ(std::tuple(S.ModuleCount, S.ScanIndex, S.Device.size()), std::tuple(1, -1, 1U));
}

TEST_F(SearchTest, AModuleThatAnswersWithChecksumOnly) {
    for (const bool formatHasChecksum : {true, false}) {
        Test.Port().Replies.clear();
        Test.Log.clear();
        S.ModuleTable[0] = {};
        Answer("$012", formatHasChecksum ? "!01400640" : "!01400600", true);
        Answer("$01M", "!018410", true);
        Answer("~01CR", "!0101", formatHasChecksum);
        Search(1);
        EXPECT_EQ(Fields(S.ModuleTable[0]),
                  formatHasChecksum ? "set 0 3 64 1 polarity 1" : "set 0 3 64 0 polarity 1");
        EXPECT_TRUE(WasSent("$01MD2"));
        EXPECT_FALSE(WasSent("$01M"));
    }
}

TEST_F(SearchTest, WhatIsNotAModule) {
    for (const char* reply : {"!014006001", "!0140060", "!01400600123", "?01400600", ">01400600", "!", "",
                              "!01XX0600", "!014006ZZ"}) {
        Test.Port().Replies["9600 $012"] = Test.Port().Replies["9600 $002"] = {std::string(reply) + "\r"};
        Search(1);
        EXPECT_EQ(S.ModuleCount, 0) << reply;
    }
    Test.Port().Replies = {{"9600 $002", {"!ZZ400600\r"}},
                           {"9600 $012", {"!01400600"}}}; // no carriage return
    Search(1);
    EXPECT_TRUE(S.Device.empty());
    EXPECT_EQ(S.ModuleTable[0].Address, 0);
}

// What is told beside the list: replies by command, address before which the search is stopped, findings.
TEST_F(SearchTest, TellsWhatIsNotInTheList) {
    const std::string babble(2000, 'U');
    struct Case {
        std::map<std::string, std::string> Replies;
        int StopBefore;
        Lines Want;
    };
    const Case cases[] = {
        {{}, 9, {}},
        {{{"$012", "!01400600\r"}, {"$01M", "!018410\r"}}, 9, {}},
        {{{"$012", "?01\r"}, {"$012B7", "!01400600AC\r"}}, 9, {}}, // understood in the end
        {{{"$012", "?01\r"}}, 9, {"Heard but not understood at address 1."}},
        {{{"$022B8", "\xFF"}, {"$032", "\r"}, {"$042", babble}, {"$062", "!06XX0600\r"}},
         9,
         {"Heard but not understood at addresses 2 to 4, 6."}},
        {{{"$002", babble}, {"$012", "!01400600\r"}, {"$01M", babble}, {"$032", "?"}},
         9,
         {"Heard but not understood at addresses 0, 1, 3."}},
        {{{"$002", "!C8400600\r"}, {"$00M", "!C88410\r"}},
         9,
         {"Search to address 200 to list the module in its initialisation state."}},
        {{{"$002", "!04400600\r"}, {"$012", "x"}},
         3,
         {"The search was stopped after address 2.",
          "Search to address 4 to list the module in its initialisation state.",
          "Heard but not understood at address 1."}},
        {{{"$002", "!00400600\r"}}, 0, {"The search was stopped before its first address."}}};
    for (const auto& [replies, stopBefore, want] : cases) {
        Test.Port().Replies.clear();
        for (const auto& [command, reply] : replies)
            Test.Port().Replies["9600 " + command] = {reply};
        S.SearchHighAddress = 6;
        NetworkSearch* running = nullptr;
        NetworkSearch search(S, {.Address = [&](std::int16_t address) {
                                 if (address == stopBefore - 1)
                                     running->Stop();
                             }});
        running = &search;
        if (stopBefore == 0)
            search.Stop();
        search.Run();
        EXPECT_EQ(FindingTexts(search.Findings()), want);
    }
}

TEST_F(SearchTest, ReadsOfEveryFamily) {
    // Configuration, model, checksum of the reads, "command reply" in order, fields.
    const std::tuple<const char*, const char*, bool, const char*, const char*> cases[] = {
        {"400640", "8410", true, "~01CR !0121", "set 0 3 64 1 polarity 5"},
        {"050602", "8220", false, "@01RL !01-01.5,@01RH !01+2.25x,@01DI !0120E01",
         "set 2 3 5 0 alarm -1.5 2.25 2 20"},
        {"080603", "8240", false, "@01RL ?01,@01RH !01+1e300,@01DI !0112345,$013 !01-0123,$015 !01C5",
         "set 3 3 8 0 alarm 0 0 1 12345 8240 -123 197"},
        {"310601", "8310", false, "", "set 1 3 49 0"},
        {"310601", "8320", false, "~01CR !0101", "set 1 3 49 0 polarity 1"},
        {"080642", "8250", true, "", "set 2 3 8 1"},
        {"500644", "8510", true,
         "$01B !011,$01A !012,$015 !0110,$013 !0100000010,@01G !01FFFFFFFF,$014 !011,$010H !010005,$010L "
         "!0112345,$011H !0124,$011L !0108,@01DI !0101,@01RP !010000000100000002,@01RA !01FFFFFFFE0000000A",
         "set 0 3 80 1 modes 1 1 2 1 levels 5 12345 24 8 first 1 16 1 0 4294967294 second 0 4294967295 2 1 "
         "10"},
        // Wrong replies: the rest is read all the same.
        {"510600", "8510", false,
         "$01B ?01,$01A ,$015 >0111,$013 !010000001,@01G !01G,$014 !01,$010H !0199999,$010L !01x,$011H "
         "!0124,$011L ?,@01DI !0111,@01RP !0100000001,@01RA !01",
         "set 0 3 81 0 levels 0 0 24 0 first 0 1 1 1 0 second 0 0 0 1 0"},
        {"0076E11D", "8620", true, "", "set 1 3 0 1 converter 1 3 1 4 57629 1 1"},
        {"00A30002", "8610", false, "", "set 2 0 0 0 converter 0 0 0 7 2 0 0"},
        {"7F0640", "8999", true, "", "set 0 3 127 1"}};
    for (const auto& [config, model, checksum, reads, want] : cases) {
        SCOPED_TRACE(model);
        S.ModuleTable[0] = {};
        Test.Port().Replies.clear();
        Test.Log.clear();
        Answer("$012", std::string("!01") + config);
        Answer("$01M", std::string("!01") + model);
        Lines sent = {"COM1 9600 $012", "COM1 9600 $01M"};
        std::istringstream script(reads);
        for (std::string command, reply;
             std::getline(script, command, ' ') && std::getline(script, reply, ',');) {
            Answer(command, reply, checksum);
            sent.push_back("COM1 9600 " + command + (checksum ? WireHex(WireSum(command), 2) : ""));
        }
        Search(1);
        EXPECT_EQ(Lines(std::ranges::find(Test.Log, sent[0]), Test.Log.end()), sent);
        EXPECT_EQ(Fields(S.ModuleTable[0]), want);
    }
}

struct DemoSearch : SimulatedSession {
    DemoSearch() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3, 4, 5, 6});
        Session.SearchHighAddress = 255;
    }

    void Run() { NetworkSearch(Session, {}).Run(); }
};

TEST(DemoSearch, FindsTheDemoLineCompletelyAndExactly) {
    DemoSearch test;
    test.Run();
    EXPECT_EQ(test.Session.Device, (Lines{"   1(01H)   8210      9600        V        +/- 2.5V        ",
                                          "   2(02H)   8220      9600        mA       +/- 20mA        ",
                                          "   3(03H)   8230      9600        C        Pt, +/- 100C    ",
                                          "   4(04H)   8240      9600        V        +/- 10V         ",
                                          "   5(05H)   8250      9600        V        +/- 10V         ",
                                          "   6(06H)   8260      9600        C        T/C Type K      ",
                                          "   7(07H)   8250      9600        2's      +/- 5V          ",
                                          "   8(08H)   8310      9600        %        4 to 20mA       ",
                                          "   9(09H)   8320      9600        V        +/- 10V         ",
                                          "  10(0AH)   8410      9600                 Digital I/O",
                                          "  11(0BH)   8420      9600                 Digital I/O",
                                          "  12(0CH)   8430      9600                 Digital I/O",
                                          "  13(0DH)   8440      9600                 Digital I/O",
                                          "  14(0EH)   8450      9600                 Digital I/O",
                                          "  15(0FH)   8460      9600                 Digital I/O",
                                          "  16(10H)   8470      9600                 Digital I/O",
                                          "  18(12H)   8510      9600                 Counter         ",
                                          "  20(14H)   8610      9600       n,8,1     RS-485",
                                          "* 22(16H)   8250      19200       V        +/- 10V         ",
                                          "  24(18H)   8999      9600                 Unknown Module",
                                          "  32(20H)   8480      19200                Digital I/O",
                                          "  33(21H)   8510      19200                Frequency       ",
                                          "  34(22H)   8230      19200       Ohms     Pt, +/- 100C    ",
                                          "  48(30H)   8490      38400                Digital I/O",
                                          "  49(31H)   8260      38400       %        T/C Type J      ",
                                          "  64(40H)   8620      115200     e,7,2     RS-422",
                                          " 255(FFH)   8250      115200      V        +/- 10V         "}));
    EXPECT_EQ(std::tuple(test.Session.ModuleCount, test.Session.ScanIndex), std::tuple(27, 18));
    const ModuleTable& table = test.Session.ModuleTable;
    EXPECT_EQ(Fields(table[0]), "set 0 3 5 0 alarm -1.5 1.5 2 20200");
    EXPECT_EQ(Fields(table[12]), "set 0 3 64 0 polarity 1");
    EXPECT_EQ(Fields(table[16]), "set 0 3 80 0 modes 0 0 2 0 levels 10 10 24 8 first 1 100000 0 0 4294967295 "
                                 "second 0 4294967295 0 1 5000");
    EXPECT_EQ(Fields(table[25]), "set 2 6 0 1 converter 0 3 1 4 16414 0 0");
}

TEST(DemoSearch, StrictOnesSendTheSameAtTheSameMoments) {
    for (const bool silent : {true, false}) {
        const auto recording = [silent](Belief belief) {
            std::string log;
            SimulatedSession test(silent ? SimulatedLine() : DemoLine());
            test.Line.Log = [&log](const LineEvent& event) {
                log += std::to_string(event.Moment) + ' ' + std::to_string(event.Baud) + ' ' + event.Command +
                       '\n';
            };
            EnableBaudCodes(test.Session, {3, 5});
            test.Session.SearchHighAddress = 23; // the next one is of an unknown model, and asked again
            NetworkSearch(test.Session, {}, belief).Run();
            return log + std::to_string(test.Time.Microseconds());
        };
        EXPECT_EQ(recording(Belief::Strict), recording(Belief::Exact));
    }
}

TEST(DemoSearch, EndsNormallyOnANoisyLine) {
    for (std::uint32_t seed = 1; seed <= 40; ++seed) {
        SCOPED_TRACE(seed);
        DemoSearch test;
        test.Line.SetSeed(seed);
        test.Line.LineFaults.Noise = true;
        if (seed % 2 == 0) // noise comes and goes, so that modules are found and their reads disturbed
            test.Line.Log = [&](const LineEvent& event) {
                test.Line.LineFaults.Noise = event.Reply[0] == '!';
            };
        EXPECT_NO_THROW(test.Run());
        EXPECT_EQ(test.Session.Device.size(), static_cast<std::size_t>(test.Session.ModuleCount));
        EXPECT_EQ(test.Session.ModuleCount > 0, seed % 2 == 0);
    }
}

} // namespace
} // namespace kavro
