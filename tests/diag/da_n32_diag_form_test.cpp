#include "diag/analog_output_panel.h"
#include "diag/da_diag_form.h"
#include "diag/lamp_form.h"
#include "diag/n32_diag_form.h"
#include "diag/panel_on_line.h"
#include "link/text.h"

#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace kavro {
namespace {

void Press(QWidget& control, const std::vector<int>& keys) {
    for (const int key : keys) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&control, &press);
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

} // namespace
} // namespace kavro
