#include "traffic/listen_form.h"

#include "support/form_driver.h"

#include <QPlainTextEdit>

namespace kavro {
namespace {

struct ListenFormTest : testing::Test {
    ScriptedSession Test;
    ListenForm Form{Test.Session, Test.Messages, false, nullptr};

    // Another master asks module 05; turns of the event loop until the form shows what `done` waits for.
    template <class Condition>
    bool Talk(Condition done) {
        for (int turn = 0; turn < 3000 && !done(); ++turn) {
            if (turn % 10 == 0 && Test.Port().PortOpen())
                Test.Port().Receive({turn % 20 == 0 ? "$052\r" : "!05080600\r", 5});
            QApplication::processEvents();
        }
        return done();
    }

    QString State() { return Find<QLabel>(Form, "State").text(); }
    QString Modules() { return Find<QPlainTextEdit>(Form, "Modules").toPlainText(); }
};

TEST_F(ListenFormTest, CountsWhatPassesAndSendsNothing) {
    EXPECT_TRUE(Talk([this] { return Modules().contains("answered"); })) << State().toStdString();
    EXPECT_TRUE(State().contains("9600 baud")) << State().toStdString();
    EXPECT_TRUE(Modules().startsWith("05: ")) << Modules().toStdString();
    Find<QComboBox>(Form, "Rate").setCurrentText("19200");
    EXPECT_TRUE(Talk([this] { return State().contains("19200 baud"); }));
    Form.reject();
    const Lines log = Test.Log;
    QApplication::processEvents();
    EXPECT_EQ(Test.Port().LastOutput, "");
    EXPECT_EQ(Test.Log, log);
}

TEST_F(ListenFormTest, APortThatFailsIsToldOnceAndTriedAgain) {
    EXPECT_TRUE(Talk([this] { return Modules().contains("answered"); }));
    Test.Port().PortOpen(false);
    Test.Port().FailOpen = true;
    EXPECT_TRUE(Talk([this] { return State().contains("failed"); }));
    EXPECT_EQ(Test.Messages.Shown.size(), 1U);
    Test.Port().FailOpen = false;
    Find<QComboBox>(Form, "Rate").setCurrentText("9600");
    EXPECT_TRUE(Talk([this] { return State().contains("Listening at 9600"); }));
}

} // namespace
} // namespace kavro
