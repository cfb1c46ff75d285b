#include "diag/da_diag_form.h"
#include "diag/lamp_form.h"
#include "diag/n32_diag_form.h"
#include "diag/panel_on_line.h"

#include <QScrollBar>

namespace kavro {
namespace {

void Press(QWidget& control, const std::vector<int>& keys) {
    for (const int key : keys) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(&control, &press);
    }
}

TEST(DaDiagForm, SendsTheStartAndEachChange) {
    ScriptedPanel test({.Model = "8310  ", .InputRange = 49});
    test.Session.DecimalSeparator = ",";
    DaDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent(), (Lines{"$01F", "#0104.000"}));
    EXPECT_EQ(Shown(form, "LowRange") + Shown(form, "HighRange") + Shown(form, "DataFormat_1"), "420mA");
    EXPECT_EQ(Shown(form, "DA_data"), "4.000");
    auto& bar = Find<QScrollBar>(form, "DaScroll");
    bar.setSliderDown(true);
    bar.setSliderPosition(100);
    bar.setSliderPosition(bar.maximum() / 2);
    EXPECT_EQ(Shown(form, "DA_data"), "12.000") << "follows the drag";
    EXPECT_EQ(test.Sent(), Lines{});
    bar.setSliderDown(false);
    EXPECT_EQ(test.Sent(), Lines{"#0112.000"}) << "no reply comes, which is not told";
    test.Session.ModuleTable[0].DataFormat = 2;
    Press(bar, {Qt::Key_Home, Qt::Key_Right, Qt::Key_Right, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Left});
    EXPECT_EQ(test.Sent(), (Lines{"#01000", "#01001", "#01002", "#01102", "#01FFF", "#01FFE"}));
    EXPECT_FALSE(Find<QTimer>(form, "Timer1").isActive());
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
}

TEST(N32DiagForm, DrivesPortsAndShowsInputs) {
    ScriptedPanel test({.Address = 2, .Model = "8320  ", .InputRange = 51});
    N32DiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent(), (Lines{"$02F", "#02A+00.000", "#02B+00.000", "#02C+00.000", "#02D+00.000"}));
    EXPECT_EQ(Shown(form, "DA_data_3"), "0.000");
    auto& bar = Find<QScrollBar>(form, "DaScroll_2");
    bar.setValue(bar.maximum() / 40 * -29);
    EXPECT_EQ(Shown(form, "DA_data_2"), "-7.250");
    Press(bar, {Qt::Key_Home, Qt::Key_Right});
    bar.setValue(0);
    EXPECT_EQ(test.Sent(), (Lines{"#02C-07.250", "#02C-10.000", "#02C-09.998", "#02C+00.000"}));
    for (const char* reply : {"!550000", "?2A0000"}) { // only the first counts
        test.Answer({reply});
        Tick(form);
        for (int bit = 0; bit < 7; ++bit) {
            const auto& lamp = dynamic_cast<Lamp&>(Find<QWidget>(form, QString("InputBit_%1").arg(bit)));
            EXPECT_EQ(lamp.Shown(), bit % 2 == 0 ? LampPicture::Bit1 : LampPicture::Bit0) << reply << bit;
        }
    }
    EXPECT_EQ(test.Sent(), (Lines{"$028", "$028"}));
}

} // namespace
} // namespace kavro
