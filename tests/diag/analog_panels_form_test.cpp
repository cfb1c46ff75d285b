#include "diag/ad_diag_form.h"
#include "diag/analog_output_panel.h"
#include "diag/da_diag_form.h"
#include "diag/lamp_form.h"
#include "diag/n32_diag_form.h"
#include "diag/panel_on_line.h"
#include "link/text.h"
#include "sim/analog_input_module.h"
#include "ui/readable_color.h"

#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace kavro {
namespace {

void Press(QWidget& control, const std::vector<int>& keys) {
    for (const int key : keys) {
        PressKey(control, key);
        QApplication::processEvents();
    }
}

TEST(DaDiagForm, CommandOfEachFormat) {
    const std::tuple<std::int16_t, std::int16_t, int, const char*, const char*> cases[] = {
        {48, 0, 20475, "#0112.500", "12.500"},  {49, 0, 32760, "#0120.000", "20.000"},
        {50, 0, 32760, "#0110.000", "10.000"},  {48, 1, 20475, "#01+062.50", "12.500"},
        {50, 1, 32760, "#01+100.00", "10.000"}, {50, 2, 16380, "#01800", "5.000"},
        {48, 2, 32760, "#01FFF", "20.000"}}; // range code, data format, position, command, shown value
    for (const auto& [range, format, position, command, shown] : cases) {
        const BarPosition bar{position, 32760};
        EXPECT_EQ(OutputCommand("01", {.DataFormat = format, .InputRange = range}, bar), command);
        EXPECT_EQ(ShownOutput(OutputValue(range, bar), "."), shown);
    }
    for (int count = 0; count <= OutputCounts; ++count) // every one is reached
        ASSERT_EQ(OutputCommand("", {.DataFormat = 2, .InputRange = 48}, {8 * count, 8 * OutputCounts}),
                  "#" + ToHex(count, 3));
}

TEST(DaDiagForm, SendsTheStartAndEachChange) {
    ScriptedPanel test({.Model = "8310  ", .InputRange = 49});
    test.Session.DecimalSeparator = ",";
    DaDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent(), (Lines{"$01F", "#0104.000"}));
    EXPECT_EQ(Shown(form, "LowRange") + Shown(form, "HighRange") + Shown(form, "DataFormat_1"), "420mA");
    EXPECT_EQ(Shown(form, "DA_data"), "4,000");
    auto& bar = Find<QScrollBar>(form, "DaScroll");
    bar.setSliderDown(true);
    bar.setSliderPosition(100);
    bar.setSliderPosition(bar.maximum() / 2);
    QApplication::processEvents();
    EXPECT_EQ(Shown(form, "DA_data"), "12,000") << "follows the drag";
    EXPECT_EQ(test.Sent(), Lines{});
    bar.setSliderDown(false);
    QApplication::processEvents();
    EXPECT_EQ(test.Sent(), Lines{"#0112.000"}) << "no reply comes, which is not told";
    test.Session.ModuleTable[0].DataFormat = 2;
    Press(bar, {Qt::Key_Home, Qt::Key_Right, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Left});
    EXPECT_EQ(test.Sent(), (Lines{"#01000", "#01001", "#01002", "#01102", "#01FFF", "#01FFE"}));
    for (const int count : {1, 2, 3}) // faster than they can be sent
        bar.setValue(8 * count);
    QApplication::processEvents();
    bar.setValue(8 * 4);
    Click(form, "ExitBtn");
    EXPECT_EQ(test.Sent(), (Lines{"#01003", "#01004"})) << "the last movement counts";
    EXPECT_FALSE(Find<QTimer>(form, "Timer1").isActive());
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
}

TEST(N32DiagForm, DrivesPortsAndShowsInputs) {
    ScriptedPanel test({.Address = 2, .Model = "8320  ", .InputRange = 51});
    N32DiagForm form(test.Session, test.Messages);
    StopTimer(form);
    EXPECT_EQ(test.Sent(), (Lines{"$02F", "#02A+00.000", "#02B+00.000", "#02C+00.000", "#02D+00.000"}));
    EXPECT_EQ(Shown(form, "DA_data_3"), "0.000");
    auto& bar = Find<QScrollBar>(form, "DaScroll_2");
    bar.setValue(bar.maximum() / 40 * -29);
    EXPECT_EQ(Shown(form, "DA_data_2"), "-7.250");
    QApplication::processEvents();
    Press(bar, {Qt::Key_Home, Qt::Key_Right});
    bar.setValue(0);
    Click(form, "ExitBtn");
    EXPECT_EQ(test.Sent(), (Lines{"#02C-07.250", "#02C-10.000", "#02C-09.998", "#02C+00.000"}));
    const Lines replies = {"!550000", "?2A0000", "!2A000", "!2A00000", "!2G0000"};
    for (const std::string& reply : replies) { // only the first counts
        test.Answer({reply});
        Tick(form);
        EXPECT_EQ(test.Sent(), Lines{"$028"});
        for (int bit = 0; bit < 7; ++bit) {
            const auto& lamp = dynamic_cast<Lamp&>(Find<QWidget>(form, QString("InputBit_%1").arg(bit)));
            EXPECT_EQ(lamp.Shown(), bit % 2 == 0 ? LampPicture::Bit1 : LampPicture::Bit0) << reply << bit;
        }
    }
}

// A stray key or a wheel that only passes must not drive a machine.
TEST(OutputBar, TheWheelMovesItOnlyAfterAClick) {
    SimulatedPanel test({.Model = "8320  "});
    N32DiagForm form(test.Session, test.Messages);
    form.show();
    form.activateWindow();
    QApplication::processEvents();
    StopTimer(form);
    EXPECT_EQ(form.focusWidget(), &Find<QWidget>(form, "ExitBtn"));
    auto& bar = Find<QScrollBar>(form, "DaScroll_0");
    const auto click = [](QWidget& control) {
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(50, 5), QPointF(), Qt::LeftButton, Qt::LeftButton,
                          {});
        control.setFocus(Qt::MouseFocusReason);
        QApplication::sendEvent(&control, &press);
    };
    const auto turn = [](QWidget& control) {
        QWheelEvent wheel({50, 5}, {}, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&control, &wheel);
    };
    const std::tuple<const char*, std::function<void()>, bool> cases[] = {
        {"hovered", [] {}, false},
        {"reached by Tab", [&] { bar.setFocus(Qt::TabFocusReason); }, false},
        {"clicked", [&] { click(bar); }, true},
        {"another one clicked", [&] { click(Find<QWidget>(form, "DaScroll_1")); }, false}};
    for (const auto& [before, act, moves] : cases) {
        act();
        const int value = bar.value();
        turn(bar);
        EXPECT_EQ(bar.value() != value, moves) << before;
    }
}

QColor ColorOf(PanelForm& form, const QString& label) {
    return Find<QLabel>(form, label).palette().color(QPalette::WindowText);
}

TEST(AdDiagForm, ReadsWhatIsEnabled) {
    ScriptedPanel test({.Model = "8250  ", .InputRange = 9});
    test.Answer({"!01DB", "!01A2.5"}); // all but 2 and 5
    AdDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent(), (Lines{"$016", "$01F"}));
    EXPECT_EQ(Shown(form, "Rev") + Shown(form, "Addr"), "A2.51 (01H)");
    test.Answer({">+0.0000", ">-5.123", "?01", ">+5.123", ">junk", "!01+1"});
    Tick(form);
    EXPECT_EQ(test.Sent(), (Lines{"#010", "#011", "#013", "#014", "#016", "#017"}));
    const QStringList readings = {"+0.0000", "-5.1230",  "Disabled", "*error*",
                                  "+5.1230", "Disabled", "*error*",  "*error*"};
    for (int channel = 0; channel < 8; ++channel) {
        const QString number = "_" + QString::number(channel);
        EXPECT_EQ(Shown(form, "Reading" + number), readings[channel]);
        EXPECT_EQ(Shown(form, "FormatText" + number), channel == 2 || channel == 5 ? "" : "V   ");
        const bool enabled = channel != 2 && channel != 5;
        EXPECT_EQ(ColorOf(form, "Reading" + number), enabled ? QColor(255, 0, 0) : QColor(128, 128, 128));
    }
    const QColor dark(45, 45, 48);
    form.setPalette(dark);
    for (const char* label : {"Reading_0", "Reading_2"})
        EXPECT_GE(ContrastRatio(ColorOf(form, label), dark), 4.5) << label;
}

TEST(AdDiagForm, RowsOfEachModel) {
    const std::map<std::string, int> models = {{"8210  ", 1}, {"8230  ", 3}, {"8260  ", 8}};
    for (const auto& [model, rows] : models) {
        ScriptedPanel test({.Model = model, .InputRange = 8});
        test.Answer({"!01FF", "!0"});
        AdDiagForm form(test.Session, test.Messages);
        EXPECT_EQ(Shown(form, "Rev"), "") << "too short a reply";
        Tick(form);
        const Lines sent = test.Sent();
        EXPECT_EQ(sent.size(), rows == 8 ? 11U : static_cast<std::size_t>(rows) + 2);
        EXPECT_EQ(sent[2], rows == 1 ? "#01" : "#010");
        EXPECT_EQ(Find<QLabel>(form, "OpenStatus").isVisibleTo(&form), rows == 8);
        for (int row = 1; row < 8; ++row) {
            const QString number = "_" + QString::number(row);
            EXPECT_EQ(ColorOf(form, "Label3" + number) == QColor(128, 128, 128), row >= rows);
            EXPECT_EQ(Shown(form, "Reading" + number).isEmpty(), row >= rows);
        }
    }
}

TEST(AdDiagForm, Faults) {
    SimulatedPanel test({.Model = "8260  ", .InputRange = 0x0F, .Checksum = 1});
    AdDiagForm form(test.Session, test.Messages);
    for (const Faults& fault : {Faults{.Silent = true}, {.Refuse = true}, {.WrongChecksum = true}}) {
        test.Module.OwnFaults = {};
        Tick(form);
        EXPECT_TRUE(Shown(form, "Reading_7").startsWith('+'));
        test.Module.OwnFaults = fault;
        Tick(form);
        EXPECT_EQ(test.Sent.back(), "$01BA" + ChecksumOf("$01BA"));
        EXPECT_EQ(Shown(form, "OpenStatus") + Shown(form, "Reading_7"), "00*error*");
    }
    AdDiagForm late(test.Session, test.Messages); // reads no enables
    test.Module.OwnFaults = {};
    Tick(late);
    EXPECT_EQ(Shown(late, "Reading_7"), "Disabled");
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
}

TEST(AdDiagForm, OpenedWhileTheLineIsAway) {
    SimulatedPanel test({.Model = "8250  ", .InputRange = 8});
    static_cast<AnalogInputModule&>(test.Module).EnabledMask = 0xFE;
    test.Line.Unplug();
    AdDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(Shown(form, "Reading_0") + Shown(form, "Reading_1") + Shown(form, "Rev"), "--");
    ASSERT_EQ(test.Messages.Shown.size(), 1U);
    EXPECT_EQ(test.Messages.Shown[0].first, "The simulated line is unplugged. Plug it in again. This window "
                                            "goes on by itself when the port is back.");
    test.Line.Plug();
    test.Time.Sleep(1000);
    Tick(form);
    EXPECT_EQ(Shown(form, "Reading_0") + Shown(form, "FormatText_1"), "DisabledV   ");
    EXPECT_NE(Shown(form, "Rev"), "");
    test.Sent.clear();
    Tick(form);
    EXPECT_EQ(test.Sent.front(), "#011") << "nothing is made up for twice";
}

} // namespace
} // namespace kavro
