#include "project/replacement.h"

#include "link/models.h"
#include "sim/module_factory.h"
#include "support/test_session.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

// Each setting of each model takes one of them that it does not have from the factory.
constexpr const char* Values[] = {"19200", "frequency", "on",  "0,2", "latch", "0", "1",
                                  "2",     "7",         "0.5", "08",  "09",    "32"};

// A dead module at an address and a new one of a model in its initialisation state.
struct Replacing : SimulatedSession {
    explicit Replacing(const std::string& model, int address = 5)
        : Old(Line.Add(MakeModule(model, address))), New(Line.Add(MakeModule(FactorySettings(model)))) {
        Old.PowerDown();
        New.PowerUp(PowerOn::Initialising);
        Line.Log = [this](const LineEvent& event) {
            if (!event.Reply.empty())
                Heard.push_back(event.Command);
            if (static_cast<int>(Heard.size()) == UnplugAt)
                Line.Unplug();
        };
        Saved = FindNewModule(Work, {}).Reading.Module;
        Saved.Address = static_cast<std::int16_t>(address);
        Heard.clear();
    }

    // Every setting of the file becomes another one than a module leaves the factory with.
    void ChangeAll() {
        NamedConfig config = BlankConfig(Saved.Model);
        const bool one = Saved.Model == "8230" || Saved.Model == "8320"; // has one range and one format
        for (SavedSetting& saved : Saved.Settings)
            EXPECT_TRUE((one && (saved.Name == "range" || saved.Name == "format")) ||
                        std::ranges::any_of(Values,
                                            [&](const char* value) {
                                                NamedSetting& setting = *FindSetting(config, saved.Name);
                                                const SettingValue before = saved.Value;
                                                if (FailureText([&] { setting.Take(value); }).empty())
                                                    saved.Value = setting.Value();
                                                return saved.Value != before;
                                            }))
                << Saved.Model << saved.Name;
    }

    RecordedMessages Told;
    LineWork Work{Session, {Told, {"kavroctl", "kavroctl send", "kavroctl search"}}};
    SimulatedModule &Old, &New;
    SavedModule Saved;
    Lines Heard; // commands that were answered
    int UnplugAt = -1;
};

TEST(Replacement, GivesEveryModelItsSettings) {
    for (const ModelRow& row : KnownModelRows()) {
        const std::string model(row.Name);
        ASSERT_TRUE(IsSimulatedModel(model)) << model << " has no row in sim/simulated_model";
        Replacing test(model);
        test.ChangeAll();
        EXPECT_EQ(PlaceTaken(test.Work, test.Saved), "");
        const NewModule found = FindNewModule(test.Work, test.Saved);
        EXPECT_EQ(found.Refusal, "") << model;
        const WrittenModule written = WriteReplacement(test.Work, test.Saved, found.Reading);
        EXPECT_TRUE(written.AsWanted()) << model << testing::PrintToString(written.Told);
        EXPECT_FALSE(LookAtReplacement(test.Work, test.Saved));
        test.New.PowerUp();
        const auto result = LookAtReplacement(test.Work, test.Saved);
        ASSERT_TRUE(result) << model;
        EXPECT_TRUE(result->Same()) << model;
        EXPECT_EQ(test.New.Settings.Baud, 19200);
        EXPECT_TRUE(test.New.Settings.Checksum);
    }
}

TEST(Replacement, RefusesBeforeAnythingIsWritten) {
    const std::tuple<void (*)(Replacing&), const char*> cases[] = {
        {[](Replacing& test) {
             test.Old.Settings.Baud = 115200;
             test.Old.Settings.Checksum = true;
             test.Old.PowerUp();
         },
         "A module 8250 answers at address 5 (05H) already."},
        {[](Replacing& test) { test.Saved.Model = "8260"; },
         "The new module is a 8250, the file has a 8260 at address 5 (05H)."},
        {[](Replacing& test) { test.New.Settings.Address = 5; }, ""}};
    for (const auto& [change, piece] : cases) {
        Replacing test("8250");
        change(test);
        std::string refusal = PlaceTaken(test.Work, test.Saved);
        if (refusal.empty())
            refusal = FindNewModule(test.Work, test.Saved).Refusal;
        EXPECT_TRUE(Contains(refusal, piece));
        EXPECT_EQ(refusal.empty(), *piece == '\0') << refusal;
        for (const std::string& command : test.Heard)
            EXPECT_TRUE(Contains("26MF", command.substr(3, 1)) && command[0] == '$') << command;
    }
    SavedModule saved = {0, "8250", ""};
    EXPECT_TRUE(Contains(NotReplaceable(saved), "at address 0 it could not be told"));
    saved.Address = 5;
    EXPECT_TRUE(Contains(NotReplaceable(saved), "does not tell how it is spoken to"));
    EXPECT_TRUE(Contains(KeptSettings(saved), "checksum, range, format, channels of the 8250"));
    saved.Model = "8999";
    EXPECT_TRUE(Contains(NotReplaceable(saved), "has no settings that can be written"));
}

// Pulled out before any of its commands, another run brings it to its end; noise is gone through.
TEST(Replacement, IsFinishedByAnotherRunWhereverItEnds) {
    const auto write = [](Replacing& test) {
        const NewModule found = FindNewModule(test.Work, test.Saved);
        return WriteReplacement(test.Work, test.Saved, found.Reading).AsWanted();
    };
    for (int command = 1; command < 90; command += 4) {
        Replacing test("8510");
        test.ChangeAll();
        test.UnplugAt = command;
        EXPECT_NE(FailureText([&] { write(test); }), "") << command;
        test.Line.Plug();
        test.Session.Line.CommPort(1).PortOpen(false);
        test.Session.Line.CommPort(1).PortOpen(true);
        test.UnplugAt = -1;
        EXPECT_EQ(PlaceTaken(test.Work, test.Saved), "");
        EXPECT_TRUE(write(test)) << command;
        test.New.PowerUp();
        EXPECT_TRUE(LookAtReplacement(test.Work, test.Saved)->Same()) << command;
    }
}

TEST(Replacement, NeitherLosesARefusedAddressNorAnEntryOfTheList) {
    Replacing test("8410");
    test.New.CommandFaults = [](std::string_view command) {
        return Faults{.Silent = command.starts_with("%")};
    };
    const ModuleReading present = FindNewModule(test.Work, test.Saved).Reading;
    const WrittenModule written = WriteReplacement(test.Work, test.Saved, present);
    EXPECT_EQ(written.NotTaken.at(0).Setting, "address");

    test.Session.ModuleTable[0] = {.Address = 5, .Model = "8410  ", .Answers = false};
    test.Session.ModuleTable[1] = {.Address = 1, .Model = "8410  "};
    test.Session.ModuleCount = 2;
    test.Session.ScanIndex = 1;
    test.Session.Device = {"old", "new"};
    TakeIntoList(test.Session, {.Address = 5, .Model = "8410  ", .BaudCode = 4});
    EXPECT_TRUE(test.Session.ModuleTable[0].Answers && !test.Session.ModuleTable[1].Answers);
}

} // namespace
} // namespace kavro
