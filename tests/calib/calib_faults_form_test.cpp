#include "calib/ad_calib_form.h"
#include "calib/da_calib_form.h"
#include "map/module_access.h"
#include "sim/demo_line.h"
#include "support/form_driver.h"
#include "support/test_session.h"

#include <QLabel>

#include <gtest/gtest.h>

namespace kavro {
namespace {

/// A module of the demo line, with checksum on. One of the commands it hears meets a fault.
struct FaultedModule : SimulatedSession {
    FaultedModule(const char* model, int address, std::int16_t range)
        : SimulatedSession(DemoLine()), Module(Line.ModuleAt(address)) {
        Module.Settings.Checksum = true;
        Session.ScanIndex = -1;
        Session.SelectedModule = 0;
        Session.ModuleTable[0] = {.Address = static_cast<std::int16_t>(address),
                                  .Model = FixedText(model, 6),
                                  .BaudCode = 3,
                                  .InputRange = range,
                                  .Checksum = 1};
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

// The line at the foot after these buttons; `Target` is typed before the last one.
TEST(CalibForms, SayAtTheFootWhatTheModuleSaid) {
    constexpr Faults none, silent{.Silent = true}, refuse{.Refuse = true}, other{.WrongAddress = true};
    const std::string notSetUp =
                          "\u26a0 The module is not known to be set up for calibration: nothing that it "
                          "stores here can be trusted. ",
                      clears = "While the target is not a number, Execute clears the present correction.",
                      gone = "The old correction is gone. ";
    const std::vector<const char*> offset{"NextBtn", "OffsetBtn", "NextBtn"}, cjc{"NextBtn", "CJCBtn"},
        execute{"NextBtn", "CJCBtn", "NextBtn"}, at4mA{"NextBtn", "NextBtn", "NextBtn"};
    const struct {
        const char* Model;
        std::vector<const char*> Buttons;
        std::string Foot;
        int At = -1;
        Faults Fault = {};
        const char* Target = "";
    } cases[] = {
        {"8260", {"NextBtn"}, ""},
        {"8260", offset, "Offset calibration: stored."},
        {"8260", offset, "Offset calibration: unreadable reply.", 0, other},
        {"8260", offset, "Offset calibration: unreadable reply.", 0, {.WrongChecksum = true}},
        {"8260", {"NextBtn", "SpanBtn", "NextBtn"}, "Span calibration: no reply.", 0, silent},
        {"8260", {"NextBtn", "SpanBtn", "NextBtn", "BackBtn"}, "", 0, silent},
        {"8260", cjc, clears},
        {"8260", cjc, "CJC temperature: refused by the module. " + clears, 0, refuse},
        {"8260", execute, "CJC correction +00E5: stored.", -1, none, "27.0"},
        {"8260", execute,
         "CJC correction: cleared. The target is now 0: Execute would correct to 0 \u00b0C."},
        {"8260", execute, gone + "CJC temperature: no reply. No new correction is made.", 2, silent, "27"},
        {"8260", execute, gone + "CJC correction +00E5: refused by the module.", 3, refuse, "27"},
        {"8260", execute, "CJC correction +00E5: stored. CJC temperature: no reply.", 4, silent, "27"},
        {"8260", execute, "The old correction is gone.", -1, none, "99999999999"},
        {"8310", {}, "Set-up for calibration: done."},
        {"8310", {}, notSetUp + "Set-up for calibration: no reply.", 1, silent},
        {"8310", {}, notSetUp + "Configuration: refused by the module.", 0, refuse},
        {"8310", {}, notSetUp + "Configuration: unreadable reply. Set-up for calibration: done.", 0, other},
        {"8310", at4mA, "Output of 4 mA: set."},
        {"8310", {"NextBtn", "NextBtn", "NextBtn", "TrimUpBtn"}, "Trim Up: done."},
        {"8310",
         {"NextBtn", "NextBtn", "NextBtn", "NextBtn"},
         "Calibration at 4 mA: refused by the module. Output of 20 mA: set.",
         3,
         refuse},
        {"8320", {}, notSetUp + "Set-up for calibration: refused by the module."},
        {"8320", at4mA, notSetUp + "Output of 4 mA: refused by the module."},
    };
    for (const auto& [model, buttons, foot, at, fault, target] : cases) {
        const bool input = std::string(model) == "8260";
        FaultedModule test(model, input ? 6 : std::string(model) == "8310" ? 8 : 9, 0x0F);
        test.FaultAt = at;
        test.Fault = fault;
        std::unique_ptr<QDialog> form;
        if (input)
            form = std::make_unique<AdCalibForm>(test.Session, test.Messages);
        else
            form = std::make_unique<DaCalibForm>(test.Session, test.Messages);
        for (const char* button : buttons) {
            if (button == buttons.back() && *target)
                Find<QLineEdit>(*form, "CJCInput").setText(target);
            Click(*form, button);
        }
        EXPECT_EQ(Find<QLabel>(*form, "Foot").text().toStdString(), foot) << at;
    }
}

// What the module says last is told behind the dialog: always after Done, otherwise when it is not good.
TEST(DaCalibForm, LeavesBehindWhatTheLastRepliesSaid) {
    const std::string own = "Own configuration: ", how = " The command %0808310641 restores it.";
    const struct {
        bool Done;
        int At;
        Faults Fault;
        std::string Note;
    } cases[] = {
        {true, -1, {}, "Calibration at 20 mA: stored. " + own + "restored."},
        {true, 5, {.Refuse = true}, "Calibration at 20 mA: refused by the module. " + own + "restored."},
        {false, -1, {}, ""},
        {false, 5, {.Silent = true}, own + "no reply." + how},
    };
    for (const auto& [done, at, fault, note] : cases) {
        FaultedModule test("8310", 8, 0x31);
        test.FaultAt = at;
        test.Fault = fault;
        DaCalibForm form(test.Session, test.Messages);
        for (int step = 1; step < 5; ++step)
            Click(form, "NextBtn");
        Click(form, done ? "NextBtn" : "ExitBtn");
        EXPECT_EQ(test.Session.Note, note);
    }
}

} // namespace
} // namespace kavro
