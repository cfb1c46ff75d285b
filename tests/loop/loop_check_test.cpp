#include "loop/loop_check.h"

#include "loop/loop_report.h"
#include "loop/loop_words.h"
#include "project/changed_line.h"
#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/analog_output_module.h"
#include "sim/digital_module.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

constexpr const char* FileText = R"({"format":"kavro-line","version":1,"name":"Boiler","modules":[
    {"address":5,"model":"8250","settings":{"baud":9600,"checksum":false,"channels":[2]},
        "channels":{"2":{"tag":"TT-2"}}},
    {"address":8,"model":"8310","tag":"TV-3","settings":{"baud":9600,"checksum":false}},
    {"address":4,"model":"8450","settings":{"baud":9600,"checksum":false},"channels":{"0":{"tag":"XS-9"}}},
    {"address":1,"model":"8210","settings":{"baud":9600,"checksum":true},"channels":{"1":{"tag":"XA-4"}}}]})";

// A line of four modules, and a check that can be dropped in the middle as by a kill.
struct Loops : SimulatedSession {
    Loops() : File(ReadLineFileText(FileText)), Path(Folder.Path("check")) {
        Session.Line.BaudChangePauseMs = 0;
        Session.ReplaceFile = [](const auto& path, const auto& content) { std::ofstream(path) << content; };
        Input = &dynamic_cast<AnalogInputModule&>(Line.Add(MakeModule("8250", 5)));
        Output = &Line.Add(MakeModule("8310", 8));
        Line.Add(MakeModule("8450", 4));
        Line.Add(MakeModule("8210", 1, 9600, true));
        Input->HeldSignal = 1;
        Output->Hear("#0807.500", 9600, 0);
        Begin(true);
    }

    void Begin(bool drives) {
        Check.reset();
        const auto before = LoadLoopRecord(Path);
        const LoopRecord record =
            before ? TakenUp(*before, File) : NewLoopRecord(File, "Boiler", "T0", before);
        Check = std::make_unique<LoopCheck>(Session, LoopPlan{Path, File, record, drives, "Ann", [] {
                                                                  return "2026-03-02T15:05:09.000+01:00";
                                                              }});
    }

    std::string Step(int seconds = 1) {
        for (int i = 0; i < seconds * 5; ++i) {
            const LineWorkScope scope(Session);
            Check->Step(Session);
            Time.Sleep(200);
        }
        return Check->View().Value + "|" + Check->View().Notice;
    }

    void GoTo(const std::string& name) {
        for (std::size_t i = 0; i < Check->Record().Entries.size(); ++i)
            if (ShortName(Check->Record().Entries[i].Point) == name)
                return Check->GoTo(static_cast<int>(i));
        FAIL() << name;
    }

    std::string Stands() { return Output->Hear("$086", 9600, 0).value_or(""); }

    const TestFolder Folder;
    LineFile File;
    std::string Path;
    AnalogInputModule* Input = nullptr;
    SimulatedModule* Output = nullptr;
    std::unique_ptr<LoopCheck> Check;
};

TEST(LoopCheck, WatchesAnInputAndDrivesAnOutput) {
    Loops test;
    EXPECT_EQ(test.Step(4), "+01.000 V|Waiting for a change.");
    test.Input->HeldSignal = 5;
    EXPECT_EQ(test.Step(1), "+05.000 V|Changed from +01.000 V, and still moves.");
    EXPECT_EQ(test.Step(4), "+05.000 V|Changed from +01.000 V, and steady now.");
    test.Check->SetNote("loose, \"red\" wire");
    test.Check->Pass();
    EXPECT_EQ(ShortName(test.Check->Entry().Point), "TV-3");
    test.Check->Pass(); // nothing yet
    EXPECT_EQ(test.Step(2), "0.000 mA|P came before there was a value, so it did not count.");
    for (const char* seen : {"0.000 mA|Step 1 of 3: driven to 0 %.", "", ""}) {
        const std::string view = test.Step(2);
        EXPECT_TRUE(*seen == '\0' || view == seen) << view;
        test.Check->Pass();
    }
    EXPECT_EQ(ShortName(test.Check->Entry().Point), "XA-4");
    EXPECT_EQ(LoadLoopRecord(test.Path)->Standing.size(), 1U) << "until it is put back";
    test.Step();
    EXPECT_EQ(test.Stands(), "!0807.500");
    EXPECT_EQ(LoadLoopRecord(test.Path)->Standing.at(0).Point.Tag, "XA-4") << "which is driven now";
    const std::string csv = LoopCsv(test.Check->Record());
    EXPECT_TRUE(
        csv.find("2026-03-02T15:05:09.000+01:00,TT-2,5,8250,channel 2,analog input,+01.000 V; +05.000 V,pass,"
                 "\"loose, \"\"red\"\" wire\",Ann\r\n") != std::string::npos)
        << csv;
    EXPECT_TRUE(csv.find(",0.000 mA; 10.000 mA; 20.000 mA,pass,,Ann\r\n") != std::string::npos) << csv;
    EXPECT_TRUE(LoopHtml(test.Check->Record(), "a<b").find("a&lt;b") != std::string::npos);
}

TEST(LoopCheck, PutsBackAfterAKill) {
    for (const bool drives : {false, true}) {
        Loops test;
        test.GoTo("TV-3");
        test.Step();
        test.Check->Pass();
        test.Step();
        EXPECT_EQ(test.Stands(), "!0810.000");
        test.Begin(drives); // the one before has ended without a word
        EXPECT_TRUE(GoOnQuestion(test.Check->Record()).find("TV-3 to 7.500") != std::string::npos);
        EXPECT_EQ(test.Check->Entry().Point.Tag, "TT-2");
        test.Step();
        EXPECT_EQ(test.Stands(), "!0807.500") << drives;
        EXPECT_EQ(CountOf(test.Check->Record(), LoopOutcome::Skip), drives ? 0 : 11);
        if (!drives) // and what was skipped for that reason is to be done once it is agreed to
            test.Begin(true);
        EXPECT_EQ(DoneCount(test.Check->Record()), 0);
    }
}

TEST(LoopCheck, TellsWhatCannotBeChecked) {
    Loops test;
    test.Input->OwnFaults.Silent = true;
    EXPECT_TRUE(test.Step().ends_with("No module answers at address 5 (05H). Check its power and the line."));
    test.Check->Pass();
    EXPECT_EQ(DoneCount(test.Check->Record()), 0) << "there is nothing that could pass";
    EXPECT_EQ(test.Check->View().Todo, TroubleTodo);
    test.Input->OwnFaults.Silent = false;
    EXPECT_EQ(test.Step(4), "+01.000 V|Waiting for a change.");
    test.Input->EnabledMask = 0;
    EXPECT_TRUE(test.Step(2).ends_with("refuses to tell the value of this channel."));
    test.Check->Fail();

    test.Step();
    test.Check->Skip(); // the output is silent from here on, and back later
    test.Output->OwnFaults.Silent = true;
    test.Step();
    EXPECT_EQ(test.Check->NotPutBack(), Lines{"TV-3 (was 7.500)"});
    EXPECT_FALSE(test.Check->PutAllBack(test.Session));
    test.Output->OwnFaults.Silent = false;
    test.Step(7);
    EXPECT_EQ(test.Stands(), "!0807.500");

    dynamic_cast<AlarmInputModule&>(test.Line.ModuleAt(1)).AlarmMode = 1;
    test.GoTo("XA-4");
    EXPECT_TRUE(test.Step(2).ends_with("While its alarm is enabled, that drives its outputs."));
    EXPECT_TRUE(test.Check->Record().Standing.empty()) << "nothing was driven";
    test.GoTo("TV-3");
    test.Step();
    test.Line.Unplug();
    EXPECT_THROW(test.Step(), RuntimeFailure);
    EXPECT_EQ(LoadLoopRecord(test.Path)->Standing.size(), 1U);
    test.Line.Plug();
    test.Session.Line.CommPort(1).PortOpen(true);
    test.Check->Skip();
    test.Step();
    EXPECT_EQ(test.Stands(), "!0807.500");
}

TEST(LoopCheck, PutsEverythingBackWhenNothingCanBeKept) {
    for (const bool atEnd : {false, true}) {
        Loops test;
        for (const char* tag : {"XA-4", "TV-3"}) {
            test.GoTo(tag);
            test.Line.ModuleAt(1).OwnFaults.Silent = *tag == 'T'; // it is not put back before the end
            test.Step();
        }
        test.Line.ModuleAt(1).OwnFaults.Silent = false;
        const auto replace = std::exchange(test.Session.ReplaceFile,
                                           [](const auto&, const auto&) { throw RuntimeFailure("full"); });
        EXPECT_EQ(test.Check->Record().Standing.size(), 2U);
        EXPECT_THROW(test.Check->SetNote("a"), RuntimeFailure);
        EXPECT_THROW(test.Check->Fail(), RuntimeFailure);
        EXPECT_EQ(test.Check->Entry().Note, "");
        if (!atEnd)
            test.GoTo("TT-2");
        EXPECT_THROW(atEnd ? static_cast<void>(test.Check->PutAllBack(test.Session))
                           : static_cast<void>(test.Step(7)),
                     RuntimeFailure);
        EXPECT_EQ(test.Stands(), "!0807.500");
        EXPECT_TRUE(test.Check->Record().Standing.empty() && !test.Check->Settled());
        test.Session.ReplaceFile = replace;
        EXPECT_TRUE(test.Check->PutAllBack(test.Session) && test.Check->Settled());
        EXPECT_TRUE(LoadLoopRecord(test.Path)->Standing.empty());
    }
}

} // namespace
} // namespace kavro
