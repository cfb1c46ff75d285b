#include "monitor/published.h"

#include "link/utc_text.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <fstream>
#include <iterator>

namespace kavro {
namespace {

TEST(Published, StandsInTheDocuments) {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    const Topics topics("plant/south", "boiler_house");
    const std::int64_t moment = MsOfUtcText("2026-03-02T14:05:09.120Z").value();
    const ModuleDescription module = {5, "8250", "A2.5", "TT-100", {{"0", "V", "TT-101"}, {"1", "V", ""}}};
    const std::string lines[] = {
        topics.Status() + " online", topics.Lost() + " 0", topics.OfModule(5) + " " + DescriptionJson(module),
        topics.OfChannel(5, "0") + " " + ValueJson({-4.12, "-4.1200", "V", "ok", moment}),
        topics.OfChannel(5, "1") + " " + ValueJson({{}, "", "V", "no reply", moment})};
    for (const std::string& line : lines)
        EXPECT_NE(document.find("\n" + line + "\n"), std::string::npos) << line;
}

TEST(Published, RefusesWhatCannotBeginATopic) {
    for (const char* prefix : {"a", "plant/south", "Wärme/Süd 1"})
        EXPECT_EQ(FailureText([&] { RequireTopicPrefix(prefix); }), "");
    for (const char* prefix : {"", "/", "/a", "a/", "a//b", "a+", "#", "a%20", "a?b", "$SYS", "a\tb"})
        EXPECT_NE(FailureText([&] { RequireTopicPrefix(prefix); }), "") << prefix;
}

// Modules on the simulated line; the commands that asked for the firmware.
struct DescriberTest : testing::Test, SimulatedSession {
    DescriberTest() {
        Session.ScanIndex = -1;
        for (const char* model : {"8250", "8410", "8610"}) {
            const std::int16_t address = Session.ModuleCount++;
            Line.Add(MakeModule(model, address, 9600, false));
            Session.ModuleTable[address] = {
                .Address = address, .Model = model, .BaudCode = 3, .InputRange = 8};
        }
        Session.Tags.Path = "file";
        Session.Tags.Modules[0] = {"8250", {"TT-100", ""}, {{1, {"Wärme \"1\"", ""}}}};
        Line.Log = [this](const LineEvent& event) {
            if (event.Command.ends_with('F'))
                Asked.push_back(event.Command);
        };
    }

    void Watch(int seconds) {
        const std::int64_t end = Time.Microseconds() + std::int64_t{1'000'000} * seconds;
        while (Time.Microseconds() < end) {
            Describer.AskDue();
            if (const auto turn = Monitored.Tick())
                Describer.Note(*turn);
            Time.SleepUntil(Time.Microseconds() + 500'000);
        }
    }

    void Silence(int address, bool silent) { Line.ModuleAt(address).OwnFaults.Silent = silent; }

    Lines Asked, Told;
    Monitor Monitored{Session};
    ModuleDescriber Describer{Session, [this](const ModuleDescription& description) {
                                  Told.push_back(std::to_string(description.Address) + " " +
                                                 DescriptionJson(description));
                              }};
};

TEST_F(DescriberTest, DescribesWhoAnswersAndAnewAfterASilence) {
    Silence(1, true);
    Watch(7);
    EXPECT_EQ(Asked, Lines({"$00F"}));
    ASSERT_EQ(Told.size(), 1U);
    EXPECT_TRUE(Contains(Told[0],
                         R"(0 {"format":"kavro-module","version":1,"model":"8250","firmware":"A1.0",)"
                         R"("tag":"TT-100","channels":[{"channel":"0","unit":"V","tag":""},)"
                         R"({"channel":"1","unit":"V","tag":"Wärme \"1\""},)"));
    Silence(1, false);
    Silence(0, true);
    Watch(5);
    Silence(0, false);
    Watch(20);
    EXPECT_EQ(Asked, Lines({"$00F", "$01F"})) << "a short silence";
    Silence(0, true);
    Watch(15);
    Silence(0, false);
    Watch(60);
    EXPECT_EQ(Asked, Lines({"$00F", "$01F", "$00F"}));
    EXPECT_EQ(Told.size(), 3U);
}

TEST_F(DescriberTest, APortThatFailsLeavesTheModuleDue) {
    Describer.Note(Monitored.Tick().value());
    Line.Unplug();
    EXPECT_NE(FailureText([&] { Describer.AskDue(); }), "");
    Line.Plug();
    Session.Line.CommPort(1).PortOpen(true);
    Describer.AskDue();
    EXPECT_EQ(Told.size(), 1U);
}

} // namespace
} // namespace kavro
