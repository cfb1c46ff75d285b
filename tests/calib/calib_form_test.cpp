#include "calib/ad_calib_form.h"
#include "calib/calib_session.h"
#include "calib/da_calib_form.h"
#include "support/form_driver.h"

#include <QLabel>
#include <QMessageBox>

#include <gtest/gtest.h>

namespace kavro {
namespace {

// What of the step is visible, the caption of Next and the control with the focus.
QString Shown(QDialog& form) {
    QStringList shown;
    for (const char* name : {"GuideText", "OffsetBtn", "SpanBtn", "CJCBtn", "Reading", "CJCLabel",
                             "CJCInputLabel", "Temperature", "CJCInput", "DegreeLabel", "TrimUpBtn"})
        if (const auto* control = form.findChild<QWidget*>(name); control && control->isVisible())
            shown << name;
    shown << Find<QAbstractButton>(form, "NextBtn").text() << form.focusWidget()->objectName();
    return shown.join(' ');
}

// Does something the next time events run while an operation goes on.
void Meanwhile(QDialog& form, std::function<void()> act) {
    QTimer::singleShot(0, &form, std::move(act));
}

void Press(QWidget& control, Qt::Key key) {
    QKeyEvent press(QEvent::KeyPress, key, {});
    QApplication::sendEvent(&control, &press);
}

TEST(AdCalibForm, WaitsWithItsControlsDisabled) {
    CalibSession test("8260", 18, 14);
    test.Port().Replies["9600 $123"] = {">+0024.8\r"};
    AdCalibForm form(test.Session, test.Messages);
    form.show();
    EXPECT_EQ(Find<QLabel>(form, "Addr").text() + Find<QLabel>(form, "RangeText").text(),
              "18 (12H)T/C Type J");
    EXPECT_EQ(Shown(form), "GuideText &Next > NextBtn");
    const QSize size = form.size();
    Click(form, "NextBtn");
    EXPECT_EQ(Shown(form), "GuideText OffsetBtn SpanBtn CJCBtn &Next > OffsetBtn");
    Click(form, "SpanBtn");
    EXPECT_EQ(Shown(form), "GuideText Reading &Execute NextBtn");
    Click(form, "BackBtn");
    Click(form, "CJCBtn");
    EXPECT_EQ(Shown(form), "CJCLabel CJCInputLabel Temperature CJCInput DegreeLabel &Execute CJCInput");
    EXPECT_EQ(form.size(), size);
    test.Sent();
    Type(Find<QLineEdit>(form, "CJCInput"), "x2 6.a3");
    Meanwhile(form, [&] {
        for (const char* button : {"NextBtn", "BackBtn", "ExitBtn"})
            Click(form, button);
        EXPECT_FALSE(Find<QLineEdit>(form, "CJCInput").isEnabled());
        form.close();
        EXPECT_TRUE(form.isVisible()); // until the sequence has ended
    });
    Press(Find<QLineEdit>(form, "CJCInput"), Qt::Key_Return);
    EXPECT_EQ(test.Sent(), "$129+0000 $123 $129+0062 $123");
    EXPECT_EQ(Shown(form), "&Execute CJCInput"); // nothing is visible, and the focus is where it was
}

// The form for a module with a configuration of its own.
struct OutputForm : CalibSession {
    OutputForm() : CalibSession("8310", 1) { Port().Replies["9600 $012"] = {"!01300600\r"}; }
    void Open() {
        Form = std::make_unique<DaCalibForm>(Session, Messages);
        Form->show();
    }
    std::unique_ptr<DaCalibForm> Form;
};

TEST(DaCalibForm, RestoresTheModuleHoweverItIsClosed) {
    for (int way = 0; way < 4; ++way) {
        OutputForm test;
        test.Open();
        for (const char* button :
             {"NextBtn", "NextBtn", "NextBtn", "TrimUpBtn", "NextBtn", "BackBtn", "NextBtn"}) {
            // A second click meanwhile is dropped, but for a trim.
            Meanwhile(*test.Form, [&] { Click(*test.Form, button); });
            Click(*test.Form, button);
            QApplication::processEvents();
        }
        EXPECT_EQ(test.Sent(),
                  "$012 %0101300600 #0104.000 $01301 $01301 $010 #0120.000 #0104.000 $010 #0120.000");
        EXPECT_EQ(Shown(*test.Form), "GuideText TrimUpBtn &Done NextBtn");
        way == 0   ? Click(*test.Form, "NextBtn")
        : way == 1 ? Click(*test.Form, "ExitBtn")
        : way == 2 ? static_cast<void>(test.Form->close())
                   : Press(*test.Form, Qt::Key_Escape);
        EXPECT_EQ(test.Sent(), way == 0 ? "$011 %0101300600" : "%0101300600");
        EXPECT_FALSE(test.Form->isVisible());
    }
}

TEST(DaCalibForm, AsksBeforeItLeavesAModuleUnrestored) {
    OutputForm test;
    test.Port().OutputsUntilFailure = 1; // lost as soon as something is to be restored
    test.Open();
    EXPECT_EQ(test.Messages.Shown.size(), 1u);
    test.Port().FailOpen = true;
    test.Sent();
    for (const auto& [answer, sent] :
         {std::pair("StayBtn", ""), {"LeaveBtn", ""}, {"TryAgainBtn", "open %0101300600"}}) {
        test.Form->show();
        DialogDriver driver(
            {{"RestoreQuestion", [&, answer = answer, sent = sent](QDialog& question) {
                  EXPECT_TRUE(static_cast<QMessageBox&>(question).informativeText().contains("%0101300600"));
                  test.Port().FailOpen = *sent == 0;
                  test.Port().OutputsUntilFailure = 9;
                  Click(question, answer);
              }}});
        Click(*test.Form, "ExitBtn");
        EXPECT_TRUE(driver.Finished());
        EXPECT_EQ(test.Form->isVisible(), QString(answer) == "StayBtn");
        EXPECT_EQ(test.Sent(), sent);
    }
}

} // namespace
} // namespace kavro
