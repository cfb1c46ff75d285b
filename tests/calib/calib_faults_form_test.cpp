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
            const bool unread = fault.Silent && at == 2;
            EXPECT_EQ(test.Sent.substr(0, begin.size()), begin);
            EXPECT_EQ(test.Heard, unread ? 3 : 5) << at;
            const QString shown = Find<QLabel>(form, "Temperature").text();
            EXPECT_EQ(shown.isEmpty(), fault.Silent && (at == 2 || at == 4)) << at;
            EXPECT_TRUE(test.Messages.Shown.empty());
            EXPECT_TRUE(at >= 0 || shown == "25.0") << shown.toStdString();
        }
}

} // namespace
} // namespace kavro
