#include "terminal/terminal_form.h"

#include "support/form_driver.h"
#include "terminal/console_form.h"
#include "terminal/test_folder.h"

#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QHelpEvent>
#include <QTextDocumentFragment>
#include <QToolTip>

namespace kavro {
namespace {

// The form on a scripted COM1, whose modules do not answer unless told to.
class TerminalFormTest : public testing::Test, protected ScriptedSession {
protected:
    TerminalFormTest() {
        ForgetExit();
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        Session.Line.SetPortBaud(1, 3, 0, 0, 0);
        Session.Line.SettingsOf(1).StopBits = 2;
        Session.Line.SettingsOf(1).Parity = 9; // leaves its label as designed
        Open();
    }

    void Open() {
        Log.clear();
        Form = std::make_unique<TerminalForm>(Session, Messages, nullptr);
        Form->show();
    }

    QLineEdit& CmdText() { return Find<QLineEdit>(*Form, "CmdText"); }
    QString Text(const QString& label) { return Find<QLabel>(*Form, label).text(); }
    QString Shown() { return static_cast<ConsoleView&>(Find<QWidget>(*Form, "Terminal")).ShownText(); }
    std::size_t Told() const { return Messages.Shown.size(); }
    void Press(const QString& button) { Click(*Form, button); }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { PressKey(CmdText(), key, modifiers); }

    void Enter(const QString& command) {
        CmdText().setText(command);
        Type(CmdText(), "\r");
    }

    // Presses a button that shows a file chooser, and picks a file there; an empty path cancels.
    void Choose(const QString& button, const std::string& path) {
        DialogDriver driver(
            {{"FileDialog", [&](QDialog& dialog) {
                  auto& chooser = static_cast<QFileDialog&>(dialog);
                  chooser.setOption(QFileDialog::DontConfirmOverwrite);
                  Find<QLineEdit>(chooser, "fileNameEdit").setText(QString::fromStdString(path));
                  path.empty() ? dialog.reject() : dialog.accept();
              }}});
        Press(button);
        EXPECT_TRUE(driver.Finished());
    }

    void ChooseBatch(const std::string& content) { Choose("BatchDialogBtn", Folder.Write("batch", content)); }

    // Repeat Command; `during` is called in its first pause.
    void Repeat(
        const QString& command, const QString& times, std::function<void()> during = [] {}) {
        DialogDriver driver({{"RepeatCmdForm", [&](QDialog& dialog) {
                                  Find<QLineEdit>(dialog, "RepeatCmd").setText(command);
                                  Find<QLineEdit>(dialog, "RepeatTimes").setText(times);
                                  Click(dialog, "OKBtn");
                                  InNextPause(during);
                              }}});
        Press("RepeatCmdBtn");
        EXPECT_TRUE(driver.Finished());
    }

    // Names of the batch buttons that are enabled.
    QStringList Enabled() {
        QStringList enabled;
        for (const char* name :
             {"RunBatchBtn", "StepBatchBtn", "StopBatchBtn", "DisplayBatchBtn", "GoTopBtn", "RepeatBtn"})
            if (Find<QAbstractButton>(*Form, name).isEnabled())
                enabled << QString(name).remove("Batch").remove("Btn");
        return enabled;
    }

    // Does something the next time events run in a pause.
    void InNextPause(std::function<void()> act) { QTimer::singleShot(0, Form.get(), std::move(act)); }

    TestFolder Folder;
    std::unique_ptr<TerminalForm> Form;
};

const QStringList Chosen = {"Run", "Step", "Display", "Repeat"};

TEST_F(TerminalFormTest, TakesTheChecksumOfTheModule) {
    EXPECT_EQ(Text("StopBits") + Text("Parity"), "2None");
    EXPECT_FALSE(Find<QCheckBox>(*Form, "CheckSumEnable").isChecked());
    EXPECT_TRUE(Enabled().isEmpty());
    Session.SelectedModule = 4;
    Session.ModuleTable[4].Checksum = 1;
    Session.BatchRepeatCount = 7;
    TerminalForm second(Session, Messages, nullptr);
    EXPECT_TRUE(Find<QCheckBox>(second, "CheckSumEnable").isChecked());
    EXPECT_EQ(Session.BatchRepeatCount, 1);
}

TEST_F(TerminalFormTest, SendsRecallsAndCopiesWhatIsTyped) {
    Port().Queue = {{"!01\n~\x7F\xE9\r"}, {}};
    Enter("$012");
    const int row = CmdText().y();
    Enter("$022");
    EXPECT_EQ(Shown(), ">$012\n!01<0A>~<7F><E9>\n>$022\n");
    EXPECT_EQ(CmdText().y(), 2 * row);
    for (const char* again : {"$022", " "}) // not recalled twice, and not at all
        Enter(again);
    for (const auto& [key, text] : {std::pair(Qt::Key_Up, "$022"),
                                    {Qt::Key_Up, "$012"},
                                    {Qt::Key_Up, "$012"},
                                    {Qt::Key_Down, "$022"},
                                    {Qt::Key_Down, ""}}) {
        Press(key);
        EXPECT_EQ(CmdText().text(), text);
    }
    Press(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), Shown());
    CmdText().setText("$012");
    for (const bool typed : {true, false}) { // Escape closes the form only with nothing typed
        Press(Qt::Key_Escape);
        EXPECT_EQ(CmdText().text(), "");
        EXPECT_EQ(Form->isVisible(), typed);
    }
}

TEST_F(TerminalFormTest, PointingAtARowShowsItInWords) {
    ModuleRecord record;
    record.Model = "8250  ";
    Select(Session, record);
    Port().Queue = {{"!01080600\r"}, {"!01<b>\r"}, {"!01\r"}};
    for (const char* command : {"$012", "$01F", "$01Z"})
        Enter(command);
    auto& console = Find<QWidget>(*Form, "Terminal");
    const QString description = console.accessibleDescription();
    const QString words[] = {
        "01: read configuration\n8250: +/- 10V, Engineering Units, 9600 baud, no checksum",
        "01: read firmware version\n<b>", "", ""}; // nothing is known of the last, and below
    for (int row = 7; row >= 0; --row) {           // words that are shown go only after a while
        const QPoint place(20, console.fontMetrics().lineSpacing() * (2 * row + 1) / 2 + 4);
        QHelpEvent pointing(QEvent::ToolTip, place, console.mapToGlobal(place));
        QApplication::sendEvent(&console, &pointing);
        EXPECT_EQ(QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText(), words[row / 2]) << row;
    }
    EXPECT_EQ(console.accessibleDescription(), description);
}

TEST_F(TerminalFormTest, SaysInWordsHowItSendsAndWhatCame) {
    ModuleRecord record;
    record.Model = "8250  ";
    Select(Session, record);
    CmdText().setText("$012");
    EXPECT_EQ(Text("SendState"), "Address 01 (8250): 9600 baud, without checksum.");
    Find<QCheckBox>(*Form, "CheckSumEnable").click();
    EXPECT_TRUE(Text("SendState").endsWith("clear Checksum enable."));
    CmdText().setText(QChar(0x20AC));
    EXPECT_TRUE(Text("SendState").contains("cannot be sent"));
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"$012", "!01080600B0\r",
         "$012 (01: read configuration): 8250: +/- 10V, Engineering Units, 9600 baud, no checksum."},
        {"$01F", "", "\u26a0 $01F (01: read firmware version): no reply within 400 ms."},
        {"$01Z", "?01A0\r", "\u26a0 $01Z: refused by the module (?)."},
        {"$01M", "!01",
         "\u26a0 $01M (01: read model): the reply is cut short: nothing more came for 400 ms."},
        {"$01M", "!01825000\r", "\u26a0 $01M (01: read model): the checksum of the reply is wrong."},
        {"$012", "!0182\r",
         "\u26a0 $012 (01: read configuration): unreadable: what came is no reply to this command."},
        {"$01Z", "!0182\r", "$01Z: answered."},
        {"", "", "\u26a0 Empty command: no reply within 400 ms."}};
    for (const auto& [command, reply, words] : cases) {
        Port().Queue = {{reply}};
        Enter(command);
        EXPECT_EQ(Text("ReplyState"), words);
        EXPECT_EQ(Text("SendState"), "");
    }
}

TEST_F(TerminalFormTest, TellsWhatCannotBeSent) {
    for (const QString& text : {QString("$01\n$02"), QString(QChar(0x20AC))})
        Enter(text);
    EXPECT_TRUE(Log.empty());
    EXPECT_EQ(Told(), 2u);
    EXPECT_EQ(WireText("\r\n$012\u2028"), "$012");
    Port().FailOpen = true;
    Port().PortOpen(false);
    Enter("$032");
    EXPECT_EQ(Told(), 3u);
    EXPECT_EQ(CmdText().text(), "$032"); // to be sent again
}

TEST_F(TerminalFormTest, DoesOneThingAtATime) {
    ChooseBatch("$FF2\n");
    QString progress;
    Repeat("$012", "2", [&] {
        progress = Text("Progress");
        Enter("$FF2");
        for (const char* button :
             {"RepeatCmdBtn", "RunBatchBtn", "StepBatchBtn", "DisplayBatchBtn", "RepeatBtn", "LogDialogBtn"})
            Press(button);
    });
    EXPECT_EQ(Log, (Lines{"COM1 9600 $012", "COM1 9600 $012"}));
    EXPECT_EQ(progress, "Command 1 of 2");
    EXPECT_EQ(Text("Progress"), "");
}

TEST_F(TerminalFormTest, LogsBeforeSending) {
    auto& enabled = Find<QCheckBox>(*Form, "LogToFile");
    enabled.click();
    Enter("$012"); // without a name nothing is logged
    Choose("LogDialogBtn", Folder.Write("log", "old"));
    Enter(" $022 ");
    Repeat("$032", "1");
    ChooseBatch(" $042\n");
    Press("StepBatchBtn");
    Port().OutputsUntilFailure = 0;
    Enter("$052");
    EXPECT_EQ(Folder.Read("log"), "$022\n$032\n$042\n$052\n");
    EXPECT_EQ(Told(), 1u);                        // the port
    Choose("BatchDialogBtn", Folder.Path("log")); // in use
    EXPECT_EQ(Messages.Shown.at(1).first, "Error opening file.");
    EXPECT_TRUE(Enabled().isEmpty());

    // What cannot be opened is not told, but stands below the box; the batch file is not emptied.
    ChooseBatch(" $042\n");
    Press("StepBatchBtn"); // fails, as the port is lost, and closes the batch file
    for (const std::string& path : {Folder.Path(), Folder.Path("batch")}) {
        enabled.setChecked(false);
        Find<QLineEdit>(*Form, "LogFileName").setText(QString::fromStdString(path));
        enabled.click();
        EXPECT_FALSE(enabled.isChecked()) << path;
        EXPECT_TRUE(Text("LogState").startsWith("Not logging: The ")) << path;
    }
    EXPECT_EQ(Folder.Read("batch"), " $042\n");
    EXPECT_EQ(Told(), 3u);

    // A full disk is told once, and the commands are sent.
    Find<QLineEdit>(*Form, "LogFileName").setText("/dev/full");
    enabled.click();
    Port().PortOpen(true);
    Port().OutputsUntilFailure = 2;
    Repeat("$062", "2");
    EXPECT_EQ(Log.back(), "COM1 9600 $062");
    EXPECT_EQ(Told(), 4u);
    EXPECT_FALSE(enabled.isChecked());
    EXPECT_TRUE(Text("LogState").contains("No space left on device"));
}

// Only the box and the chooser open a file; while the box is ticked, what is not logged can be seen.
TEST_F(TerminalFormTest, ALogIsNotEmptiedByItsNameBeingTyped) {
    auto& enabled = Find<QCheckBox>(*Form, "LogToFile");
    auto& name = Find<QLineEdit>(*Form, "LogFileName");
    const auto type = [&](const std::string& text) { name.setText(QString::fromStdString(text)); };
    const std::string first = Folder.Write("first", "old"), second = Folder.Path("second");
    const auto tick = [&] {
        enabled.setChecked(false);
        enabled.click();
    };
    const std::tuple<std::function<void()>, std::string, const char*, const char*> steps[] = {
        // What is done, what the line below says, and the two files after another command.
        {tick, "Not logging: there is no file name", "old", "precious"},
        {[&] { type(first); }, "Not logging: this file is not open", "old", "precious"},
        {tick, "", "$2\n", "precious"},
        {[&] { type(second); }, "Logging to " + first, "$2\n$3\n", "precious"},
        {[&] { Choose("LogDialogBtn", ""); }, "Not logging: there is no", "$2\n$3\n", "precious"},
        {[&] { type(first); }, "", "$2\n$3\n$5\n", "precious"},
        {[&] { Choose("LogDialogBtn", second); }, "", "$2\n$3\n$5\n", "$6\n"},
        {tick, "", "$2\n$3\n$5\n", "$7\n"},
        {[&] { enabled.click(); }, "", "$2\n$3\n$5\n", "$7\n"}};
    Folder.Write("second", "precious");
    for (int command = 0; const auto& [act, state, inFirst, inSecond] : steps) {
        SCOPED_TRACE(command);
        act();
        Enter("$" + QString::number(command++));
        EXPECT_TRUE(Text("LogState").toStdString().starts_with(state));
        EXPECT_EQ(Text("LogState").isEmpty(), state.empty());
        EXPECT_EQ(Find<QLabel>(*Form, "LogState").isVisible(), !state.empty());
        EXPECT_EQ(Folder.Read("first") + "," + Folder.Read("second"), std::string(inFirst) + "," + inSecond);
    }
}

TEST_F(TerminalFormTest, RunsABatchFileThatCanBeStopped) {
    ChooseBatch("$012\n$022\n$032\n");
    Session.BatchRepeatCount = 3;
    InNextPause([&] {
        EXPECT_EQ(Enabled(), QStringList("Stop"));
        EXPECT_EQ(Text("Progress"), "Pass 1 of 3: Command 1 of 3");
        Press("StopBatchBtn");
    });
    Press("RunBatchBtn");
    EXPECT_EQ(Log, Lines{"COM1 9600 $012"});
    EXPECT_EQ(Enabled(), Chosen);

    Port().OutputsUntilFailure = 1; // lost at the second line
    Press("RunBatchBtn");
    EXPECT_EQ(Told(), 1u);
    EXPECT_EQ(Enabled(), Chosen);

    Choose("BatchDialogBtn", ""); // cancelled
    EXPECT_TRUE(Enabled().isEmpty());
}

TEST_F(TerminalFormTest, SkipsAndPausesAsAskedAndCanBeLeftInThePause) {
    EXPECT_FALSE(Find<QCheckBox>(*Form, "SkipComments").isChecked());
    ChooseBatch("; one\n$012\n; two\n$022\n");
    auto& pause = Find<QLineEdit>(*Form, "BatchPause");
    pause.setText("");
    Press("RunBatchBtn");
    EXPECT_EQ(Told(), 1U);
    EXPECT_EQ(Enabled(), Chosen);
    pause.setText("1000");
    Click(*Form, "SkipComments");
    for (const char* end : {"StopBatchBtn", "ExitBtn"}) {
        Log.clear();
        InNextPause([&] {
            EXPECT_EQ(Text("Progress"), "Command 1 of 2 (line 2)");
            EXPECT_FALSE(pause.isEnabled());
            InNextPause([&] { // in that of a second
                Press("RunBatchBtn");
                Press(end);
            });
        });
        Press("RunBatchBtn");
        EXPECT_EQ(Log, Lines{"COM1 9600 $012"});
        EXPECT_TRUE(Text("ReplyState").contains("Line 2, $012"));
    }
    EXPECT_FALSE(Form->isVisible());
}

// Every way to close ends a repeat or a run after the command being awaited, and then closes the form.
TEST_F(TerminalFormTest, ClosingEndsWhatIsGoingOn) {
    for (const bool run : {true, false})
        for (const bool exitButton : {true, false}) {
            Open();
            ChooseBatch("$012\n$022\n");
            const auto end = [&] {
                exitButton ? Press("ExitBtn") : static_cast<void>(Form->close());
                EXPECT_TRUE(Form->isVisible()); // until it has really ended
            };
            if (run)
                InNextPause(end);
            run ? Press("RunBatchBtn") : Repeat("$012", "9", end);
            EXPECT_EQ(Log.size(), 1u);
            EXPECT_FALSE(Form->isVisible());
        }
}

TEST_F(TerminalFormTest, ClosingClosesItsDialogs) {
    ChooseBatch("$012\n");
    for (const char* button : {"RepeatCmdBtn", "RepeatBtn", "DisplayBatchBtn", "LogDialogBtn"}) {
        Form->show();
        QTimer::singleShot(10, Form.get(), [&] { Form->close(); });
        Press(button);
        EXPECT_FALSE(Form->isVisible()) << button;
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr) << button;
    }
    EXPECT_TRUE(Log.empty());
}

} // namespace
} // namespace kavro
