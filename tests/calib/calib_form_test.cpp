#include "calib/ad_calib_form.h"
#include "calib/calib_session.h"
#include "calib/da_calib_form.h"
#include "support/form_driver.h"

#include <QMessageBox>

namespace kavro {
namespace {

// What of the step is visible, the caption of Next and the control with the focus.
QString Shown(QDialog& form) {
    QStringList shown;
    for (const char* name : {"GuideText", "OffsetBtn", "CJCBtn", "Reading", "CJCInput", "TrimUpBtn"})
        if (const auto* control = form.findChild<QWidget*>(name); control && control->isVisible())
            shown << name;
    shown << Find<QAbstractButton>(form, "NextBtn").text() << form.focusWidget()->objectName();
    return shown.join(' ');
}

void Press(QWidget& control, Qt::Key key, bool held = false) {
    QKeyEvent press(QEvent::KeyPress, key, {}, {}, held);
    QApplication::sendEvent(&control, &press);
}

TEST(AdCalibForm, WaitsWithItsControlsDisabled) {
    CalibSession test("8260", 18, 14, ">+0024.8\r");
    AdCalibForm form(test.Session, test.Messages);
    form.show();
    EXPECT_EQ(Find<QLabel>(form, "RangeText").text(), "T/C Type J");
    for (const auto& [button, shown] : {std::pair("NextBtn", "GuideText OffsetBtn CJCBtn &Next > OffsetBtn"),
                                        {"SpanBtn", "GuideText Reading &Execute NextBtn"},
                                        {"BackBtn", "GuideText OffsetBtn CJCBtn &Execute OffsetBtn"},
                                        {"CJCBtn", "CJCInput &Execute CJCInput"}}) {
        Click(form, button);
        EXPECT_EQ(Shown(form), shown);
    }
    test.Sent();
    test.Session.DecimalSeparator = ",";
    Type(Find<QLineEdit>(form, "CJCInput"), "x2 .6,a3");
    QTimer::singleShot(0, &form, [&] { // in the first wait
        Click(form, "NextBtn");
        EXPECT_FALSE(Find<QLineEdit>(form, "CJCInput").isEnabled());
        form.close();
        EXPECT_TRUE(form.isVisible()); // until the sequence has ended
    });
    Press(Find<QLineEdit>(form, "CJCInput"), Qt::Key_Return);
    EXPECT_EQ(test.Sent(), "$129+0000 $123 $129+0062 $123");
    EXPECT_EQ(Shown(form), "&Execute CJCInput"); // nothing is visible, and the focus is where it was
}

TEST(DaCalibForm, RestoresTheModuleHoweverItIsClosed) {
    for (const bool done : {true, false}) {
        CalibSession test("8310", 1, 48);
        test.Port().Queue = {{"!01300600\r"}};
        DaCalibForm form(test.Session, test.Messages);
        form.show();
        for (const char* button : {"NextBtn", "NextBtn", "NextBtn", "TrimUpBtn", "NextBtn"}) {
            // A second click meanwhile is dropped, but for a trim.
            QTimer::singleShot(0, &form, [&] { Click(form, button); });
            Click(form, button);
            QApplication::processEvents();
        }
        Press(Find<QWidget>(form, "NextBtn"), Qt::Key_Return, true); // still held down
        EXPECT_EQ(test.Sent(), "$012 %0101300600 #0104.000 $01301 $01301 $010 #0120.000");
        EXPECT_EQ(Shown(form), "GuideText TrimUpBtn &Done NextBtn");
        done ? Click(form, "NextBtn") : static_cast<void>(form.close());
        EXPECT_EQ(test.Sent(), done ? "$011 %0101300600" : "%0101300600");
        EXPECT_FALSE(form.isVisible());
        EXPECT_EQ(test.Elapsed(), 2 * 400 + (done ? 6 : 5) * 100); // nothing answered
    }
}

TEST(DaCalibForm, AsksBeforeItLeavesAModuleUnrestored) {
    CalibSession test("8310", 1, 48);
    test.Port().Queue = {{"!01300600\r"}};
    test.Port().OutputsUntilFailure = 1; // lost when the module is set up
    DaCalibForm form(test.Session, test.Messages);
    EXPECT_TRUE(Contains(test.Messages.Shown.at(0).first, "try again"));
    test.Sent();
    for (const QString answer : {"StayBtn", "LeaveBtn", "TryAgainBtn"}) {
        form.show();
        test.Port().FailOpen = true;
        DialogDriver driver(
            {{"RestoreQuestion", [&](QDialog& question) {
                  EXPECT_TRUE(static_cast<QMessageBox&>(question).informativeText().contains("%0101300600"));
                  test.Port().FailOpen = false;
                  test.Port().OutputsUntilFailure = 9;
                  Click(question, answer);
              }}});
        Click(form, "ExitBtn");
        EXPECT_TRUE(driver.Finished());
        EXPECT_EQ(form.isVisible(), answer == "StayBtn");
    }
    EXPECT_EQ(test.Sent(), "open %0101300600"); // sent for the last answer alone
}

} // namespace
} // namespace kavro
