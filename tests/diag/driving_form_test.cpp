#include "diag/da_diag_form.h"
#include "diag/dio_diag_form.h"
#include "diag/drive_question_form.h"
#include "diag/n32_diag_form.h"
#include "diag/n46_diag_form.h"
#include "diag/panel_on_line.h"
#include "link/codes.h"
#include "sim/analog_output_module.h"

#include <QPushButton>
#include <QScrollBar>

namespace kavro {
namespace {

// A module that stands at something, and is asked for before it is driven.
struct CarefulPanel : SimulatedPanel {
    explicit CarefulPanel(const char* model, std::int16_t range = 49, std::int16_t format = EngineeringUnits)
        : SimulatedPanel({.Model = model, .DataFormat = format, .InputRange = range}) {
        Session.Preferences.AskBeforeDriving = true;
        Module.Settings.TypeCode = range;
        Module.Settings.DataFormat = format;
    }

    /// What was sent since the last call, as reads follow drives.
    Lines SentNow() {
        for (int i = 0; i < 10; ++i)
            QApplication::processEvents();
        return std::exchange(Sent, {});
    }

    /// What is sent when no late reply is to be expected any more.
    Lines SentLater() {
        Time.Sleep(3000);
        QElapsedTimer real;
        for (real.start(); Sent.empty() && !real.hasExpired(5000);)
            QApplication::processEvents();
        return SentNow();
    }

    void Stands(const std::string& command) { Module.Hear(command, 9600, 0); }
};

void Enter(PanelForm& form, const QString& field, const QString& text) {
    auto& entry = Find<QLineEdit>(form, field);
    entry.clear();
    Type(entry, text);
    PressKey(entry, Qt::Key_Return);
    QApplication::processEvents();
}

TEST(OutputEntry, EnterAndPercentDriveTheValueExactly) {
    struct Case {
        std::int16_t Range, Format;
        const char *Typed, *Command, *Half;
    };
    const Case cases[] = {{49, EngineeringUnits, "12,5", "#0112.500", "#0112.000"},
                          {49, EngineeringUnits, " +4.001 ", "#0104.001", "#0112.000"},
                          {49, PercentOfRange, "12,5", "#01+053.13", "#01+050.00"},
                          {49, TwosComplement, "12,5", "#0187F", "#01800"},
                          {50, EngineeringUnits, "9,999", "#0109.999", "#0105.000"},
                          {49, EngineeringUnits, "3,999", "", "#0112.000"},
                          {49, PercentOfRange, "53,13", "", "#01+050.00"},
                          {49, EngineeringUnits, "mA", "", "#0112.000"}};
    for (const auto& [range, format, typed, command, half] : cases) {
        SCOPED_TRACE(typed);
        ScriptedPanel test({.Model = "8310  ", .DataFormat = format, .InputRange = range});
        test.Session.DecimalSeparator = ",";
        DaDiagForm form(test.Session, test.Messages);
        test.Sent();
        Enter(form, "DaEntry", typed);
        const Lines expected = *command ? Lines{command} : Lines{};
        EXPECT_EQ(test.Sent(), expected);
        EXPECT_EQ(Find<QLabel>(form, "EntryNote").text().contains("Nothing was sent"), expected.empty());
        Click(form, "Percent50");
        QApplication::processEvents();
        EXPECT_EQ(test.Sent(), Lines{half});
        EXPECT_EQ(Shown(form, "DA_data"), range == 50 ? "5,000" : "12,000");
        EXPECT_FALSE(form.findChild<QPushButton*>("PutBackBtn"));
        Enter(form, "DaEntry", "8");
        Find<QScrollBar>(form, "DaScroll").setValue(0);
        Enter(form, "DaEntry", "9");
        Find<QLineEdit>(form, "DaEntry").setText("10");
        PressKey(Find<QLineEdit>(form, "DaEntry"), Qt::Key_Return);
        Click(form, "ExitBtn");
        EXPECT_EQ(test.Sent().size(), 3U) << "what has been entered is sent before the panel closes";
    }
}

TEST(DaDiagForm, ReadsBackAndPutsBackWhereItIsAskedFor) {
    CarefulPanel test("8310  ");
    static_cast<AnalogOutputModule&>(test.Module).Error20mA = 0.02;
    test.Stands("#0112.500");
    DaDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.SentNow(), (Lines{"$01F", "$016", "#0104.000", "$016", "$018"}));
    EXPECT_EQ(Shown(form, "OpeningState"), "Opening this window has set the output to 4.000 mA.");
    EXPECT_EQ(Shown(form, "ReadBack"), "Sent 4.000 mA; read back 4.000 mA; at the terminals 4.000 mA.");
    EXPECT_TRUE(Shown(form, "PutBackState").startsWith("Put Back sets the output to 12.500 mA,"));
    Enter(form, "DaEntry", "20");
    EXPECT_EQ(test.SentNow(), (Lines{"#0120.000", "$016", "$018"}));
    EXPECT_EQ(Shown(form, "ReadBack"),
              "\u26a0 Sent 20.000 mA; read back 20.000 mA; at the terminals 20.020 mA "
              "(+0.020 mA).");
    Find<QScrollBar>(form, "DaScroll").setValue(0); // due, and given up
    Click(form, "PutBackBtn");
    EXPECT_EQ(test.SentNow(), (Lines{"#0112.500", "$016", "$018"}));
    EXPECT_EQ(Shown(form, "DA_data"), "12.500");
    test.Module.CommandFaults = [](std::string_view command) {
        return Faults{.Refuse = command.starts_with('#')};
    };
    Enter(form, "DaEntry", "8");
    EXPECT_EQ(test.SentNow().size(), 3U);
    EXPECT_TRUE(Shown(form, "ReadBack")
                    .startsWith("\u26a0 Sent 8.000 mA: refused by the module; the module "
                                "stands at 12.500 mA (+4.500 mA)"))
        << Shown(form, "ReadBack").toStdString();
}

TEST(DaDiagForm, WhatTheModuleDoesNotTellCannotBePutBack) {
    CarefulPanel test("8310  ");
    test.Module.CommandFaults = [](std::string_view command) { return Faults{.Silent = command == "$016"}; };
    DaDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.SentNow(), (Lines{"$01F", "$016", "#0104.000"})) << "until no late reply can come";
    EXPECT_EQ(test.SentLater(), Lines{"$016"});
    EXPECT_FALSE(Find<QPushButton>(form, "PutBackBtn").isEnabled());
    EXPECT_TRUE(Shown(form, "PutBackState").contains("the module did not tell"));
    EXPECT_TRUE(Shown(form, "ReadBack").startsWith("\u26a0 Sent 4.000 mA; the module does not tell"));
}

TEST(DaDiagForm, WhatLiesOutsideTheRangeOfTheListIsSaid) {
    CarefulPanel test("8310  ");
    test.Module.Settings.TypeCode = 48; // 0 to 20 mA
    DaDiagForm form(test.Session, test.Messages);
    test.SentNow();
    EXPECT_EQ(Shown(form, "PutBackState"),
              "Nothing can be put back: the output stood at 0.000 mA, outside the "
              "range of the list.");
}

TEST(DaDiagForm, ReadsBeforeItDrivesAlsoWhenThePortComesLate) {
    CarefulPanel test("8310  ");
    test.Stands("#0112.500");
    test.Line.Unplug();
    DaDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Messages.Shown.size(), 1U);
    EXPECT_FALSE(Find<QPushButton>(form, "PutBackBtn").isEnabled());
    test.Line.Plug();
    test.Time.Sleep(1000);
    test.SentNow();
    Tick(form);
    EXPECT_EQ(test.SentNow(), (Lines{"$01F", "$016", "#0104.000", "$016", "$018"}));
    EXPECT_TRUE(Find<QPushButton>(form, "PutBackBtn").isEnabled());
    test.Line.Unplug();
    Click(form, "PutBackBtn");
    EXPECT_FALSE(Find<QPushButton>(form, "PutBackBtn").isEnabled());
    EXPECT_EQ(Shown(form, "DA_data"), "4.000") << "what the output was last set to";
}

TEST(N32DiagForm, PutsBackEveryOutputAsOneOperation) {
    CarefulPanel test("8320  ", 51);
    test.Stands("#01B-07.250");
    N32DiagForm form(test.Session, test.Messages);
    StopTimer(form);
    const Lines reads = {"$016A", "$016B", "$016C", "$016D"};
    Lines expected = {"$01F"};
    expected.insert(expected.end(), reads.begin(), reads.end());
    for (const char* port : {"A", "B", "C", "D"})
        expected.push_back("#01" + std::string(port) + "+00.000");
    expected.insert(expected.end(), reads.begin(), reads.end());
    EXPECT_EQ(test.SentNow(), expected);
    EXPECT_EQ(Shown(form, "OpeningState"), "Opening this window has set A, B, C, D to 0.000 V.");
    Click(form, "Percent25_2");
    QApplication::processEvents();
    EXPECT_EQ(test.Sent.front(), "#01C-05.000");
    Click(form, "PutBackBtn");
    Click(form, "ExitBtn");
    EXPECT_EQ(Lines(test.Sent.end() - 4, test.Sent.end()),
              (Lines{"#01A+00.000", "#01B-07.250", "#01C+00.000", "#01D+00.000"}));
}

// A module that is off would put reading back off for ever, if its inputs were polled meanwhile.
TEST(N32DiagForm, NothingOldStandsBesideAValueThatWasNotAnswered) {
    CarefulPanel test("8320  ", 51);
    N32DiagForm form(test.Session, test.Messages);
    StopTimer(form);
    test.SentNow();
    test.Module.OwnFaults.Silent = true;
    Enter(form, "DaEntry_0", "7");
    EXPECT_EQ(Shown(form, "ReadBack_0"), "\u26a0 Sent 7.000 V: no reply; not read back yet.");
    Tick(form);
    EXPECT_EQ(test.SentNow(), Lines{"#01A+07.000"});
    test.Module.OwnFaults = {};
    EXPECT_EQ(test.SentLater(), Lines{"$016A"});
    EXPECT_TRUE(Shown(form, "ReadBack_0").contains("no reply; the module stands at 0.000 V (-7.000 V)"));
    test.Line.Unplug();
    Tick(form);
    EXPECT_TRUE(Shown(form, "ReadBack_1").endsWith("; not read back since the port failed."));
    test.Line.Plug();
    test.Time.Sleep(1000);
    test.SentNow();
    Tick(form);
    EXPECT_EQ(test.SentNow(), Lines{"$018"});
    EXPECT_EQ(test.SentLater(), (Lines{"$016A", "$016B", "$016C", "$016D"}));
    EXPECT_EQ(Shown(form, "ReadBack_1"), "Sent 0.000 V; read back 0.000 V.");
}

TEST(DriveForm, PutsBackWhatItReadBeforeTheUserDroveSomething) {
    for (const bool told : {true, false}) {
        CarefulPanel test("8430  ");
        test.Stands("@01DO0F05");
        test.Module.OwnFaults.Silent = !told;
        DioDiagForm form(test.Session, test.Messages);
        Tick(form);
        test.Time.Sleep(3000);
        Click(form, "Output_1");
        test.Module.OwnFaults = {};
        test.Time.Sleep(3000);
        Tick(form);
        EXPECT_EQ(Find<QPushButton>(form, "PutBackBtn").isEnabled(), told);
        test.Sent.clear();
        Click(form, "PutBackBtn");
        EXPECT_EQ(std::ranges::count(test.Sent, "@01DO0F05"), told ? 1 : 0);
    }
}

TEST(DriveForm, PutsBackOutputsOnly) {
    for (const bool outputs : {false, true}) {
        CarefulPanel test("8460  ");
        test.Stands(outputs ? "$01S0A" : "$01S0F");
        N46DiagForm form(test.Session, test.Messages);
        Tick(form);
        EXPECT_EQ(Shown(form, "OpeningState"), "Opening this window has not driven anything.");
        EXPECT_EQ(Shown(form, "PutBackState") == "The module has no outputs.", !outputs);
        EXPECT_EQ(Find<QPushButton>(form, "PutBackBtn").isEnabled(), outputs);
        test.Session.Preferences.AskBeforeDriving = false;
        N46DiagForm off(test.Session, test.Messages);
        Tick(off);
        EXPECT_EQ(Shown(off, "OpeningState"), Shown(form, "OpeningState"));
        EXPECT_FALSE(off.findChild<QPushButton*>("PutBackBtn"));
    }
}

TEST(DriveQuestion, SaysWhatIsDrivenFromWhereAndCancelIsTheDefault) {
    struct Case {
        std::int16_t Address;
        DrivingWindow Window;
        Lines Sent;
        std::vector<Lines> Changes;
        bool Silent = false;
    };
    using enum DrivingWindow;
    const Case cases[] = {
        {8, Diagnostic, {"$086"}, {{"Output", "12,501 mA", "4,000 mA"}}},
        {8, Diagnostic, {"$086"}, {{"Output", "the module does not tell", "4,000 mA"}}, true},
        {8,
         Calibration,
         {"$086"},
         {{"Configuration", "4 to 20mA, % of FSR", "0 to 20mA, Engineering Units"},
          {"Output", "12,501 mA", "4 mA, later 20 mA"}}},
        {9,
         Diagnostic,
         {"$096A", "$096B", "$096C", "$096D"},
         {{"Output A, FCV-1", "7,250 V", "0,000 V"},
          {"Output B", "0,000 V", "0,000 V"},
          {"Output C", "0,000 V", "0,000 V"},
          {"Output D", "0,000 V", "0,000 V"}}}};
    for (const auto& [address, window, sent, changes, silent] : cases) {
        SimulatedSession demo(DemoLine());
        demo.Session.DecimalSeparator = ",";
        Select(demo.Session, {.Address = address,
                              .Model = address == 8 ? "8310  " : "8320  ",
                              .DataFormat = address == 8 ? PercentOfRange : EngineeringUnits,
                              .InputRange = static_cast<std::int16_t>(address == 8 ? 49 : 51)});
        demo.Session.Tags.Path = "line.json";
        demo.Session.Tags.Modules[9] = {.Model = "8320", .Channels = {{0, {"FCV-1", ""}}}};
        demo.Line.ModuleAt(8).Hear("#08+053.13", 9600, 0);
        demo.Line.ModuleAt(9).Hear("#09A+07.250", 9600, 0);
        demo.Line.ModuleAt(address).OwnFaults.Silent = silent;
        Lines heard;
        demo.Line.Log = [&heard](const LineEvent& event) { heard.push_back(event.Command); };
        EXPECT_TRUE(MayDrive(demo.Session, window, nullptr)) << "the setting is off";
        EXPECT_EQ(heard, Lines{});
        demo.Session.Preferences.AskBeforeDriving = true;
        for (const bool drives : {false, true}) {
            heard.clear();
            DialogDriver driver(
                {{"DriveQuestionForm", [drives, &changes = changes](QDialog& dialog) {
                      EXPECT_TRUE(Find<QPushButton>(dialog, "CancelBtn").isDefault());
                      for (std::size_t row = 0; row < changes.size(); ++row)
                          for (std::size_t i = 0; const char* name : {"What", "Now", "Becomes"})
                              EXPECT_EQ(Find<QLabel>(dialog, QString("%1_%2").arg(name).arg(row))
                                            .text()
                                            .toStdString(),
                                        changes[row][i++]);
                      if (drives)
                          Click(dialog, "DriveBtn");
                      else
                          PressKey(dialog, Qt::Key_Escape);
                  }}});
            EXPECT_EQ(MayDrive(demo.Session, window, nullptr), drives);
            EXPECT_EQ(heard, sent);
        }
        demo.Line.Unplug();
        EXPECT_TRUE(
            Contains(FailureText([&demo, &window = window] { MayDrive(demo.Session, window, nullptr); }),
                     "Nothing has been driven"));
    }
}

} // namespace
} // namespace kavro
