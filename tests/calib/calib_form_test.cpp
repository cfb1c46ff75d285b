#include "calib/ad_calib_form.h"
#include "calib/calib_session.h"
#include "calib/da_calib_form.h"
#include "map/module_access.h"
#include "sim/calibrated_input.h"
#include "support/form_driver.h"

#include <QCheckBox>
#include <QDir>
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
    PressKey(Find<QLineEdit>(form, "CJCInput"), Qt::Key_Return);
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
        PressKey(Find<QWidget>(form, "NextBtn"), Qt::Key_Return, {}, true); // still held down
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

/// A module of the demo line, with checksum on. One of the commands it hears meets a fault.
struct FaultedModule : SimulatedSession {
    FaultedModule(const char* model, int address, std::int16_t range)
        : SimulatedSession(DemoLine()), Module(Line.ModuleAt(address)) {
        Module.Settings.Checksum = true;
        Select(Session, {.Address = static_cast<std::int16_t>(address),
                         .Model = FixedText(model, 6),
                         .InputRange = range,
                         .Checksum = 1});
        Line.Log = [this](const LineEvent& event) {
            Sent += " " + event.Command.substr(0, event.Command.size() - 2);
            ++Heard;
        };
        Module.CommandFaults = [this](std::string_view) { return Heard == FaultAt ? Fault : Faults(); };
    }
    std::string Ask(const std::string& command) {
        ExchangeWithModule(Session, 0, command, Session.Line.ReplyTimeout);
        return Session.Line.ReplyText;
    }
    SimulatedModule& Module;
    std::string Sent;
    int Heard = 0, FaultAt = -1;
    Faults Fault;
};

constexpr Faults EachFault[] = {
    {.Silent = true}, {.WrongChecksum = true}, {.Refuse = true}, {.WrongAddress = true}};

TEST(DaCalibForm, GoesOnWhateverIsAnswered) {
    const std::vector<std::string> commands = {"$082",   "%0808300600", "#0804.000",  "$083FF",
                                               "$083FF", "$083FF",      "$080",       "#0820.000",
                                               "$08301", "$081",        "%0808310641"};
    for (const Faults& fault : EachFault)
        for (int at = -1; at < static_cast<int>(commands.size()); ++at) {
            FaultedModule test("8310", 8, 0x31);
            test.FaultAt = at;
            test.Fault = fault;
            DaCalibForm form(test.Session, test.Messages);
            for (const char* button : {"NextBtn", "NextBtn", "NextBtn", "TrimDownBtn", "TrimDownBtn",
                                       "TrimDownBtn", "NextBtn", "TrimUpBtn", "NextBtn"})
                Click(form, button);
            std::string expected;
            for (const std::string& command : commands) // nothing is set up or restored that was not read
                if (at != 0 || fault.WrongAddress || command[0] != '%')
                    expected += " " + command;
            EXPECT_EQ(test.Sent, expected) << at;
            EXPECT_TRUE(test.Messages.Shown.empty());
            if (at < 0) { // the trim at 4 mA was three counts off
                test.Ask("#08+000.00");
                EXPECT_EQ(test.Ask("$088"), "!0804.000");
            }
        }
}

TEST(AdCalibForm, CorrectsTheColdJunctionUnlessItCannotBeRead) {
    for (const Faults& fault : EachFault)
        for (int at = -1; at < 5; ++at) {
            FaultedModule test("8260", 6, 0x0F);
            test.FaultAt = at;
            test.Fault = fault;
            AdCalibForm form(test.Session, test.Messages);
            for (const char* button : {"NextBtn", "CJCBtn"})
                Click(form, button);
            Find<QLineEdit>(form, "CJCInput").setText("25.0");
            Click(form, "NextBtn");
            const std::string begin = " $063 $069+0000 $063";
            const bool unread = !fault.WrongAddress && at == 2; // a temperature names no address
            EXPECT_EQ(test.Sent.substr(0, begin.size()), begin);
            EXPECT_EQ(test.Heard, unread ? 3 : 5) << at;
            const QString shown = Find<QLabel>(form, "Temperature").text();
            EXPECT_EQ(shown.isEmpty(), !fault.WrongAddress && (at == 2 || at == 4)) << at;
            EXPECT_TRUE(test.Messages.Shown.empty());
            EXPECT_TRUE(at >= 0 || shown == "25.0") << shown.toStdString();
        }
}

// The line at the foot after these buttons ("n" Next, "b" Back, "o" Offset, "s" Span, "c" CJC, "u" Trim Up,
// "x" Exit), and the note that a dialog that closes leaves behind. The target is typed before the last one.
TEST(CalibForms, SayWhatTheModuleSaid) {
    constexpr Faults none, silent{.Silent = true}, refuse{.Refuse = true}, other{.WrongAddress = true},
        damaged{.WrongChecksum = true};
    const std::map<char, const char*> names = {{'n', "NextBtn"}, {'b', "BackBtn"}, {'o', "OffsetBtn"},
                                               {'s', "SpanBtn"}, {'c', "CJCBtn"},  {'u', "TrimUpBtn"},
                                               {'x', "ExitBtn"}};
    const std::string notSetUp =
                          "\u26a0 The module is not known to be set up for calibration: nothing that it "
                          "stores here can be trusted. ",
                      clears = "While the target is not a number, Execute clears the present correction.",
                      gone = "The old correction is gone. ", made = "CJC correction +00E5: ",
                      own = "Own configuration: ", how = " The command %0808310641 restores it.";
    const struct {
        int Address;
        const char* Buttons;
        std::string Text;
        int At = -1;
        Faults Fault = {};
        const char* Target = "";
    } cases[] = {
        {6, "n", ""},
        {6, "non", "Offset calibration: stored."},
        {6, "non", "Offset calibration: unreadable reply.", 0, other},
        {6, "non", "Offset calibration: unreadable reply.", 0, damaged},
        {6, "nsn", "Span calibration: no reply.", 0, silent},
        {6, "nsnb", "", 0, silent},
        {6, "nc", clears},
        {6, "nc", "CJC temperature: refused by the module. " + clears, 0, refuse},
        {6, "ncn", made + "stored.", -1, none, "27.0"},
        {6, "ncn", "CJC correction: cleared. The target is now 0: Execute would correct to 0 \u00b0C."},
        {6, "ncn", gone + "CJC temperature: no reply. No new correction is made.", 2, silent, "27"},
        {6, "ncn", gone + "CJC temperature: unreadable reply. No new correction is made.", 2, damaged, "27"},
        {6, "ncn", made + "stored.", 1, refuse, "27"},
        {6, "ncn", gone + made + "refused by the module.", 3, refuse, "27"},
        {6, "ncn", made + "stored. CJC temperature: no reply.", 4, silent, "27"},
        {6, "ncn", "The old correction is gone.", -1, none, "99999999999"},
        {8, "", "Set-up for calibration: done."},
        {8, "", notSetUp + "Set-up for calibration: no reply.", 1, silent},
        {8, "", notSetUp + "Configuration: refused by the module.", 0, refuse},
        {8, "", notSetUp + "Configuration: unreadable reply. Set-up for calibration: done.", 0, other},
        {8, "nnn", "Output of 4 mA: set."},
        {8, "nnnu", "Trim Up: done."},
        {8, "nnnn", "Calibration at 4 mA: refused by the module. Output of 20 mA: set.", 3, refuse},
        {8, "nnnnn", "Calibration at 20 mA: stored. " + own + "restored."},
        {8, "nnnnn", "Calibration at 20 mA: refused by the module. " + own + "restored.", 5, refuse},
        {8, "nnnx", ""},
        {8, "nnnx", own + "no reply." + how, 3, silent},
        {9, "", notSetUp + "Set-up for calibration: refused by the module."},
        {9, "nnn", notSetUp + "Output of 4 mA: refused by the module."}};
    for (const auto& [address, buttons, text, at, fault, target] : cases) {
        FaultedModule test(address == 6 ? "8260" : "8310", address, 0x0F);
        test.FaultAt = at;
        test.Fault = fault;
        std::unique_ptr<QDialog> form;
        if (address == 6)
            form = std::make_unique<AdCalibForm>(test.Session, test.Messages);
        else
            form = std::make_unique<DaCalibForm>(test.Session, test.Messages);
        form->show();
        for (const char* button = buttons; *button; ++button) {
            if (!button[1] && *target)
                Find<QLineEdit>(*form, "CJCInput").setText(target);
            Click(*form, names.at(*button));
        }
        const std::string told =
            form->isVisible() ? Find<QLabel>(*form, "Foot").text().toStdString() : test.Session.Note;
        EXPECT_EQ(told, text) << buttons << at;
    }
}

constexpr std::int16_t VoltRange = 8;

TEST(CalibForms, ReadOnlyWhileReadingsAreShown) {
    FaultedModule test("8250", 5, VoltRange);
    dynamic_cast<CalibratedInput&>(test.Module).HeldSignal = 0;
    AdCalibForm form(test.Session, test.Messages);
    form.show();
    const auto tick = [&] {
        form.Timer1_Timer();
        return std::exchange(test.Sent, {});
    };
    const auto text = [&](const char* name) { return Find<QLabel>(form, name).text().toStdString(); };
    EXPECT_EQ(tick(), "");
    Click(form, "NextBtn");
    EXPECT_FALSE(Find<QCheckBox>(form, "ReadingsBox").isVisible());
    EXPECT_EQ(tick(), "");
    Click(form, "BackBtn");
    Click(form, "ReadingsBox");
    EXPECT_EQ(tick(), ""); // nothing is calibrated yet
    Click(form, "NextBtn");
    EXPECT_EQ(tick(), " $05M #050");
    Click(form, "OffsetBtn");
    for (int reading = 0; reading < 5; ++reading) {
        test.Time.Sleep(500);
        EXPECT_EQ(tick(), " #050");
    }
    EXPECT_EQ(text("PresentReading"), "+0.040 V");
    EXPECT_EQ(text("ReadingState"), "\u2713 stable");
    EXPECT_TRUE(Contains(text("Replaces"), "the error of +0.040 V (+0.400 % of full scale)"));
    EXPECT_TRUE(Contains(text("Reversible"), "Not reversible"));
    QTimer::singleShot(0, &form, [&] { form.Timer1_Timer(); }); // finds an operation going on
    Click(form, "NextBtn");
    EXPECT_EQ(std::exchange(test.Sent, {}), " $051");
    Click(form, "BackBtn"); // what is left is waited for
    EXPECT_EQ(std::exchange(test.Sent, {}), " #050");
    Click(form, "ReadingsBox");
    EXPECT_FALSE(Find<QTimer>(form, "Timer1").isActive());
    EXPECT_EQ(tick(), "");
}

// The buttons as above, "K" Keep a record, "0" and "1" the signal, "T" the end of the program by a signal.
TEST(CalibForms, KeepARecordWhenTheyClose) {
    const std::map<char, const char*> names = {{'n', "NextBtn"},   {'b', "BackBtn"},     {'o', "OffsetBtn"},
                                               {'s', "SpanBtn"},   {'d', "TrimDownBtn"}, {'u', "TrimUpBtn"},
                                               {'K', "KeepRecord"}};
    const struct {
        int Address;
        const char* Buttons;
        std::vector<std::string> Kept;
    } cases[] = {
        {5, "no", {}},
        {5, "K", {}}, // nothing was begun
        {5,
         "Knon",
         {R"("as_found": {"value": 0.04, "error": 0.04, "percent": 0.4})",
          R"("as_left": {"value": 0, "error": 0, "percent": 0})", R"("result": "pass")"}},
        {5, "Knonbs1n", {R"("value": 9.97, "error": -0.03, "percent": -0.3)", R"("value": 10, "error": 0)"}},
        {5, "KnonT", {R"("result": "aborted")"}},
        {8,
         "KnnndddnuuuuunT",
         {R"("value": 4.012, "error": 0.012, "percent": 0.06)",
          R"("value": 19.98, "error": -0.02, "percent": -0.1)", R"("result": "pass")"}},
        {8,
         "Knnnd",
         {R"("result": "aborted")",
          "4 mA: not stored, trimmed by -1 step. Own configuration 310641: restored."}}};
    for (const auto& [address, buttons, kept] : cases) {
        FaultedModule test(address == 5 ? "8250" : "8310", address, address == 5 ? VoltRange : 0x31);
        auto* const input = dynamic_cast<CalibratedInput*>(&test.Module);
        if (input)
            input->HeldSignal = 0;
        std::unique_ptr<QDialog> form;
        if (input)
            form = std::make_unique<AdCalibForm>(test.Session, test.Messages);
        else
            form = std::make_unique<DaCalibForm>(test.Session, test.Messages);
        form->show();
        Find<QLineEdit>(*form, "RecordFolder").setText(QDir::tempPath());
        for (const char* button = buttons; *button; ++button)
            if (*button == 'T')
                test.Session.Ending = true;
            else if (*button == '1')
                input->HeldSignal = 10;
            else
                Click(*form, names.at(*button));
        form->close();
        std::string json;
        for (const auto& [path, content] : test.Files)
            if (path.ends_with(".json"))
                json = content;
        EXPECT_EQ(json.empty(), kept.empty()) << buttons;
        for (const std::string& part : kept)
            EXPECT_TRUE(Contains(json, part)) << buttons << json;
    }
}

} // namespace
} // namespace kavro
