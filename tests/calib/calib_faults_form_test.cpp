#include "calib/ad_calib_form.h"
#include "calib/da_calib_form.h"
#include "support/form_driver.h"

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
        Line.Log = [this](const LineEvent&) { ++Heard; };
        Module.CommandFaults = [this](std::string_view) { return Heard == FaultAt ? Fault : Faults(); };
    }
    SimulatedModule& Module;
    int Heard = 0, FaultAt = -1;
    Faults Fault;
};

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
        {6, "ncn", "?", 1, refuse, "27"},
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

} // namespace
} // namespace kavro
