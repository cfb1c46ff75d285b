#include "cli/captured.h"
#include "cli/config_command.h"
#include "cli/setting_json.h"
#include "link/text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <sstream>

namespace kavro {
namespace {

// The demo line, the commands that it hears and what they do.
struct ConfigSession : SimulatedSession {
    ConfigSession() : SimulatedSession(DemoLine()) {
        Line.Log = [this](const LineEvent& event) { Heard.push_back(event.Command); };
    }

    Captured Show(std::int16_t address, bool json = false) {
        Session.ModuleCount = 0;
        return Capture([&] { return ShowConfig(Session, ContactOf(Session, address, {}), json); });
    }

    // Changes as "name=value". Nothing is known from a map unless `known` modules are.
    Captured Set(std::int16_t address, const Lines& changes, bool force = false, std::int16_t known = 0) {
        std::vector<Assignment> parsed;
        for (const std::string& change : changes)
            parsed.push_back({change.substr(0, change.find('=')), change.substr(change.find('=') + 1)});
        const Contact contact = ContactOf(Session, address, {});
        Session.ModuleCount = known;
        return Capture([&] { return SetConfig(Session, contact, parsed, force); });
    }

    // The lines "name: value" that are shown, as changes.
    Lines Shown(std::int16_t address) {
        std::istringstream lines(Show(address).Out);
        Lines changes;
        for (std::string line; std::getline(lines, line);) {
            const auto colon = line.find(':');
            changes.push_back(line.substr(0, colon) + "=" + Trim(line.substr(colon + 1)));
        }
        return changes;
    }

    Lines Heard;
};

TEST(ConfigCommand, WhatIsShownCanBeSetAndChangesNothing) {
    constexpr std::int16_t addresses[] = {0, 1, 3, 5, 6, 7, 8, 9, 12, 15, 18, 20};
    for (const std::int16_t address : addresses) {
        ConfigSession demo;
        const Lines shown = demo.Shown(address);
        EXPECT_GE(shown.size(), 5U) << address;
        const Captured set = demo.Set(address, shown);
        EXPECT_EQ(set.Exit, ExitSuccess) << address << set.Err;
        EXPECT_EQ(demo.Shown(address), shown);
    }
}

TEST(ConfigCommand, ShowsWhatWasSet) {
    const std::tuple<std::int16_t, Lines, Lines> cases[] = {
        {0, {"Baud=38400", "CHECKSUM=0", "address=0x17"}, {"baud=38400", "checksum=off", "address=23"}},
        {1,
         {"range=+/- 1v", "low-alarm=-0.5", "high-alarm=.75", "alarm-mode=1"},
         {"range=04 (+/- 1V)", "low-alarm=-0.5", "high-alarm=0.75", "alarm-mode=momentary"}},
        {3,
         {"range=2a", "format=ohms", "channels=2, 0"},
         {"range=2A (Cu, 0~60 ohms)", "format=Ohms", "channels=0,2"}},
        {6, {"channels=NONE", "format=2"}, {"channels=none", "format=Two's complement"}},
        {8, {"range=0 to 10v", "format=2"}, {"range=32 (0 to 10V)", "format=Two's complement"}},
        {9, {"address=99", "input-polarity=inverted"}, {"address=99", "input-polarity=inverted"}},
        {12,
         {"address=99", "output-polarity=0", "input-polarity=1"},
         {"output-polarity=normal", "input-polarity=inverted"}},
        {18,
         {"ttl-high=3", "min-low=9999", "max-1=4294967294", "alarm-0=ON", "status-1=Start"},
         {"ttl-high=3", "min-low=9999", "max-1=4294967294", "alarm-0=on", "status-1=start"}},
        {15,
         {"port-b=INPUT", "port-ch=0"},
         {"port-a=input", "port-b=input", "port-ch=output", "port-cl=output"}},
        {18, {"type=frequency", "gate-time=1s"}, {"type=frequency", "gate-time=1s"}},
        {20,
         {"parity=even", "stop-bits=2", "interface=rs-422"},
         {"parity=even", "stop-bits=2", "interface=RS-422"}}};
    for (const auto& [address, given, expected] : cases) {
        ConfigSession demo;
        const Captured set = demo.Set(address, given);
        EXPECT_EQ(set.Err, "kavroctl: Change configuration complete.\n");
        EXPECT_EQ(set.Exit, ExitSuccess);
        const bool moved = std::ranges::count(given, "address=99") == 1;
        const Lines shown = demo.Shown(moved ? std::int16_t{99} : address);
        for (const std::string& line : expected)
            EXPECT_NE(std::ranges::find(shown, line), shown.end()) << address << ' ' << line;
    }
}

TEST(ConfigCommand, PrintsJsonWithTypedValues) {
    ConfigSession demo;
    const auto json = QJsonDocument::fromJson(QByteArray::fromStdString(demo.Show(7, true).Out));
    EXPECT_EQ(json.object(), QJsonDocument::fromJson(R"({"model": "8250", "address": 7, "baud": 9600,
        "checksum": false, "range": "09", "format": "Two's complement", "channels": [0, 1, 3, 4, 5]})")
                                 .object());
}

TEST(ConfigCommand, ValuesGoThroughJsonUnchanged) {
    const SettingValue values[] = {true,       4294967295.0,           -1.5,
                                   "% of FSR", std::vector<int>{0, 7}, std::vector<int>()};
    for (const SettingValue& value : values)
        EXPECT_EQ(FromJson(ToJson(value)), value);
    for (const char* json : {"[null]", "[{}]", "[[1.5]]", "[[-1]]", "[[\"1\"]]"})
        EXPECT_THROW(FromJson(QJsonDocument::fromJson(json)[0]), RuntimeFailure) << json;
}

TEST(ConfigCommand, WrongValuesAreToldBeforeAnythingIsWritten) {
    const std::tuple<std::int16_t, Lines, const char*> cases[] = {
        {5, {"alarm-mode=latch"}, "it has model, address, baud, checksum, range, format, channels."},
        {5, {"range=20"}, "give 08 (+/- 10V), 09 (+/- 5V)"},
        {5, {"format=3"}, "give Engineering Units, % of FSR, Two's complement."},
        {3, {"channels=3"}, "numbers of 0 to 2"},
        {5, {"channels=0x100"}, "does not fit channels"},
        {5, {"address=9", "address=256"}, "'256' is not an address"},
        {5, {"baud=19200"}, "initialisation state"},
        {0, {"baud=9601"}, "115200"},
        {5, {"model=8260"}, "cannot be changed"},
        {1, {"low-alarm=-2.6"}, "from -2.5 to +2.5 V"},
        {18, {"type=frequency", "filter=on"}, "only while the type is counter"},
        {18, {"ttl-low=0.85"}, "at most one decimal"},
        {18, {"max-0=4294967296"}, "0 to 4294967295"},
        {20, {"second-baud=1200"}, "initialisation state"},
        {20, {"data-bits=9"}, "5 to 8"}};
    for (const auto& [address, given, told] : cases) {
        ConfigSession demo;
        demo.Show(address);
        Lines reads = std::exchange(demo.Heard, {});
        std::ranges::copy(Lines(reads), std::back_inserter(reads)); // read twice, and alike
        const Captured set = demo.Set(address, given);
        EXPECT_EQ(set.Exit, ExitWrongUse) << given.back();
        EXPECT_TRUE(Contains(set.Err, told)) << given.back();
        EXPECT_EQ(std::ranges::count(set.Err, '\n'), 1);
        EXPECT_EQ(demo.Heard, reads) << given.back();
    }
}

TEST(ConfigCommand, WhatIsHardlyMeantNeedsForce) {
    // What is told (nothing: it is not refused), what is asked between reading the settings and writing.
    const std::tuple<std::int16_t, Lines, const char*, Lines> cases[] = {
        {5, {"address=70"}, "The map has a module 8410 at address 70 (46H) already.", {}},
        {5, {"address=10"}, "A module answers at address 10 (0AH) already.", {"$0A2"}},
        {5, {"address=6"}, "A module answers at address 6 (06H) already.", {"$062", "$062BC"}},
        {0, {"address=34", "baud=9600"}, nullptr, {"$222", "$222BA"}}, // taken at another rate only
        {0, {"address=34"}, "A module answers at address 34 (22H) already.", {"$222"}},
        {0, {"address=0", "baud=9600"}, nullptr, {"$002"}}, // what answers is the module itself
        {5, {"address=5", "format=2"}, nullptr, {}},
        {1,
         {"low-alarm=2", "high-alarm=1.5"},
         "The low alarm limit 2 is above the high alarm limit 1.5.",
         {}},
        {1, {"low-alarm=1.5", "high-alarm=1.5"}, nullptr, {}}};
    for (const auto& [address, given, told, asked] : cases)
        for (const bool force : {false, true}) {
            ConfigSession demo;
            demo.Show(address);
            const auto reads = static_cast<std::ptrdiff_t>(2 * std::exchange(demo.Heard, {}).size());
            demo.Session.ModuleTable[0] = {.Address = 70, .Model = "8410  "};
            const Captured set = demo.Set(address, given, force, 1);
            const bool refused = told != nullptr && !force;
            // Where two modules answer, what was written cannot be read back.
            const bool collides = force && told && given.front() == "address=10";
            EXPECT_EQ(set.Exit, refused    ? ExitWrongUse
                                : collides ? ExitNotAccepted
                                           : ExitSuccess)
                << given.front() << set.Err;
            EXPECT_TRUE(Contains(set.Err, refused ? told : "Change configuration complete."));
            const Lines after(demo.Heard.begin() + reads, demo.Heard.end());
            const auto write = std::ranges::find_if(after, [](const auto& each) { return each[0] != '$'; });
            EXPECT_EQ(Lines(after.begin(), write), force ? Lines() : asked) << given.front();
            EXPECT_EQ(write == after.end(), refused) << given.front();
        }
}

TEST(ConfigCommand, WhatTheModuleDoesNotAcceptOrTellHasAnExitCode) {
    const Faults silent = {.Silent = true};
    const Faults refuse = {.Refuse = true};
    const char* untold = "did not tell all of its settings. Try again.\n";
    // The beginning of the commands that fail, how they fail, what is told.
    const std::tuple<std::int16_t, const char*, Faults, const char*> cases[] = {
        {5, "$052", silent, "No module answers at address 5 (05H) at 9600 baud, without or with a checksum."},
        {5, "$056", silent, untold},
        {15, "$0F6", silent, untold},
        {18, "@12RP", silent, untold},
        {1, "@01RL", refuse, untold},
        {5, "%05", refuse,
         "Configuration command failed.\nkavroctl: The address did not take: 99 is wanted, the module has "
         "5."},
        {20, "%14", silent, "kavroctl: Configuration command failed.\n"},
        {24, "?", silent, "The module 8999 at address 24 (18H) has no settings that kavroctl knows."}};
    for (const auto& [address, at, fault, told] : cases) {
        ConfigSession demo;
        demo.Line.ModuleAt(address).CommandFaults = [at = at, fault = fault](std::string_view command) {
            return command.starts_with(at) ? fault : Faults();
        };
        const Captured set = demo.Set(address, {"address=99"});
        EXPECT_EQ(set.Exit, ExitNotAccepted);
        EXPECT_TRUE(Contains(set.Err, told)) << set.Failure;
    }
    ConfigSession unplugged;
    unplugged.Line.Unplug();
    EXPECT_NE(unplugged.Set(5, {"address=99"}).Failure, "");
}

TEST(ConfigCommand, ReadsBackAnotherModelWithoutBelievingIt) {
    ConfigSession demo;
    demo.Line.Log = [&](const LineEvent& event) {
        if (event.Command.starts_with("$0FS"))
            demo.Line.ModuleAt(15).Settings.Model = "8410"; // a digit of its name is damaged from now on
    };
    const Captured set = demo.Set(15, {"port-a=output"});
    EXPECT_EQ(set.Exit, ExitNotAccepted);
    EXPECT_TRUE(Contains(set.Err, "What was written could not be read back."));
}

TEST(ConfigCommand, WrongUseIsToldInOneLine) {
    ExpectWrongUse({{{"config"}, "config show ADDRESS"},
                    {{"config", "get", "5"}, "config show ADDRESS"},
                    {{"config", "show"}, "Give the address"},
                    {{"config", "show", "5", "range=08"}, "'config show' changes nothing"},
                    {{"config", "set", "5"}, "Give what"},
                    {{"config", "set", "5", "range"}, "name=value"},
                    {{"config", "set", "5", "rnge=08"}, "range"},
                    {{"config", "set", "5", "Baud=1", "baud=2"}, "twice"},
                    {{"config", "show", "0", "--checksum"}, "Leave"}});
}

} // namespace
} // namespace kavro
