#include "calib/ad_calibration.h"
#include "calib/da_calibration.h"
#include "link/codes.h"
#include "sim/calibrated_input.h"
#include "support/test_session.h"

#include <tuple>

namespace kavro {
namespace {

std::string Measured(const std::optional<double>& value) {
    return value ? " " + FormatNumber(*value, 1, 4) : " -";
}

// Its points, then what it says of the whole and the module.
std::string Told(const CalibrationRecord& record) {
    std::string told;
    for (const CalibrationPoint& point : record.Points)
        told += point.What + " " + FormatNumber(point.Signal, 1, 3) + " " + point.Unit +
                Measured(point.AsFound) + Measured(point.AsLeft) + " " + point.Source +
                (!point.Stored   ? " not known, "
                 : *point.Stored ? " stored, "
                                 : " not stored, ") +
                ShownResult(ResultOf(record, point)) + "; ";
    return told + ShownResult(ResultOf(record)) + ": " + record.LeftAs;
}

/// A guide on a module of the demo line, whose inputs have a signal. Keys: the guide's buttons ("n" Next, "b"
/// Back, "o" Offset, "s" Span, "c" CJC, "u" Trim Up, "d" Trim Down, "x" Exit), "p" a reading 500 ms later,
/// "w" a second, "0" no signal, "1" the span signal, "S" silent, "R" refusing, "U" unplugged, "." all well.
struct WatchedGuide : SimulatedSession {
    WatchedGuide(const ModuleRecord& record, double span)
        : SimulatedSession(DemoLine()), Module(Line.ModuleAt(record.Address)), Span(span) {
        Select(Session, record);
        Module.Settings.DataFormat = record.DataFormat;
        Module.Settings.TypeCode = record.InputRange;
        Line.Log = [this](const LineEvent& event) { Sent += " " + event.Command; };
        if (ModuleFamily(record.Model) == AnalogOutput)
            Output.emplace(Session, 0).SetUp();
        else
            Input.emplace(Session, 0, [this](int ms) { Time.Sleep(ms); });
    }
    CalibrationWatch& Watch() { return Input ? Input->Watch() : Output->Watch(); }
    CalibrationRecord Record() const { return Input ? Input->Record() : Output->Record(); }
    void PressInput(char key) {
        key == 'n'   ? Input->NextBtn_Click()
        : key == 'b' ? Input->BackBtn_Click()
        : key == 'o' ? Input->OffsetBtn_Click()
        : key == 's' ? Input->SpanBtn_Click()
                     : Input->CJCBtn_Click();
    }
    void PressOutput(char key) {
        if (key == 'n' && Output->NextBtn_Click())
            Output->Restore();
        else if (key != 'n')
            key == 'b'   ? Output->BackBtn_Click()
            : key == 'u' ? Output->TrimUpBtn_Click()
            : key == 'd' ? Output->TrimDownBtn_Click()
                         : Output->ExitBtn_Click();
    }
    void Press(char key) {
        if (key == 'p' || key == 'w')
            Time.Sleep(key == 'p' ? 500 : 1000);
        if (key == 'p')
            Input ? static_cast<void>(Watch().Poll()) : Output->Poll();
        else if (key == '0' || key == '1')
            dynamic_cast<CalibratedInput&>(Module).HeldSignal = key == '1' ? Span : 0;
        else if (std::string_view("SRU.").find(key) != std::string_view::npos) {
            Module.OwnFaults = {.Silent = key == 'S', .Refuse = key == 'R'};
            key == 'U' ? Line.Unplug() : Line.Plug();
        } else if (key != 'w')
            Input ? PressInput(key) : PressOutput(key);
    }
    // Failures are told by the guide.
    void PressAll(std::string_view keys) {
        for (const char key : keys)
            FailureText([&] { Press(key); });
    }
    SimulatedModule& Module;
    double Span;
    std::string Sent;
    std::optional<AdCalibration> Input;
    std::optional<DaCalibration> Output;
};

constexpr std::int16_t Checksum = 1;
const ModuleRecord Voltage = {.Address = 9, .Model = "8320  ", .InputRange = 0x33},
                   Voltages = {.Address = 5, .Model = "8250  ", .InputRange = 8},
                   Temperatures = {.Address = 6, .Model = "8260  ", .InputRange = 15, .Checksum = Checksum},
                   Current = {.Address = 8, .Model = "8310  ", .DataFormat = 1, .InputRange = 0x31};

TEST(CalibrationWatch, KeepsWhatWasFoundAndLeft) {
    const std::string offset = "Offset 0.000 V 0.0400 0.0000 module stored, pass; ",
                      span = "Span 10.000 V 9.9700 10.0000 module stored, pass; ",
                      stored = "Offset calibration: stored.", own = "Own configuration 310601: restored.",
                      low = "4 mA 4.000 mA 4.0120 4.0000 module stored, pass; ",
                      high = "20 mA 20.000 mA 19.9800 20.0000 module stored, pass; ",
                      nothing = "aborted: Nothing was stored: the module keeps the calibration that it had.",
                      doubt = " Whether the module has done it is not known.",
                      refused = "Offset calibration: refused by the module.",
                      notLeft = "- module not stored, fail; aborted: ",
                      notKnown = "- module not known, fail; aborted: ",
                      broken = "the port has failed. It was broken off in the middle.",
                      unzeroed = "Offset 0.000 V 0.0400 " + notLeft,
                      looked = "4 mA 4.000 mA 4.0120 - module not stored, not judged; aborted: ",
                      refusedLow = "4 mA 4.000 mA 4.0120 - module not stored, fail; 20 mA 20.000 mA - -  not "
                                   "stored, fail; fail: 4 mA: refused by the module, trimmed by -3 steps. "
                                   "20 mA: refused by the module, but ",
                      unset = "the module is not known to have set this output. ",
                      notSetUp = "the module is not known to be set up for calibration",
                      unmeasured = "4 mA 4.000 mA - -  stored, not judged; 20 mA 20.000 mA - -  stored, not "
                                   "judged; not judged: 4 mA: stored, but " +
                                   notSetUp + ". 20 mA: stored, but " + notSetUp + ". T" +
                                   notSetUp.substr(1) + ": nothing that it stores here can be trusted. ",
                      untrimmed = "4 mA 4.000 mA 4.0120 " + notLeft,
                      notStored = "4 mA: not stored, trimmed by -1 step. ",
                      silent = "Own configuration 310601: no reply. The command %0808310601 restores it.",
                      restores = "Still set up for calibration. The command %0808310601 restores its own "
                                 "configuration 310601.";
    const struct {
        const ModuleRecord& Module;
        const char* Keys;
        std::string Told;
        const char* Typed = ""; // target, or what the meter shows before each trim or store
    } cases[] = {
        {Voltages, "0nopnwpb1spnwp", offset + span + "pass: " + stored + " Span calibration: stored."},
        {Voltages, "0nonwp", offset + "pass: " + stored},     // never read before: read then
        {Voltages, "0nopnwpnwp", offset + "pass: " + stored}, // what was found stays
        {Voltages, "0nopnp", "Offset 0.000 V 0.0400 - module stored, fail; fail: " + stored}, // too soon
        {Voltages, "0nopSnwp", "Offset 0.000 V 0.0400 " + notKnown + "Offset calibration: no reply." + doubt},
        {Voltages, "0nopRn.wp", "Offset 0.000 V 0.0400 0.0400 module not stored, fail; aborted: " + refused},
        {Voltages, "0nonwpb1spRn.wp",
         offset + "Span 10.000 V 9.9700 9.9700 module not stored, fail; fail: " + stored +
             " Span calibration: refused by the module."},
        {Voltages, "0nopUn", "Offset 0.000 V 0.0400 " + notKnown + "Offset calibration: " + broken},
        {Voltages, "0nopUn.nwp", offset + "pass: " + stored},
        {Voltages, "0nopnwpb1spUn",
         offset + "Span 10.000 V 9.9700 " + notKnown + stored + " Span calibration: " + broken},
        {Voltages, "0Snopnwp",
         "Offset 0.000 V - -  not known, fail; aborted: Offset calibration: no reply." + doubt},
        {Voltages, "0nopp", nothing},
        {Temperatures, "0nopnwp", "Offset 0.000 mV - -  stored, not judged; not judged: " + stored},
        {Temperatures, "ncpnp",
         "Cold junction 25.300 C 23.5000 25.3000 module stored, pass; pass: CJC correction +0076: stored.",
         "25.3"},
        {Temperatures, "ncpnp", "not judged: CJC correction: cleared."},
        {Temperatures, "ncpUn", "Cold junction 25.300 C 23.5000 " + notLeft + "CJC correction: " + broken,
         "25.3"},
        {Current, "nnnpdddpnpuuuuupn", low + high + "pass: 4 mA: stored. 20 mA: stored. " + own},
        {Current, "nnndddnuuuuun", low + high + "pass: 4 mA: stored. 20 mA: stored. " + own},
        {Current, "nnndddnbdnx",
         "4 mA 4.000 mA 4.0120 3.9960 module stored, pass; aborted: 4 mA: stored. " + own},
        {Current, "nnndddnbdx",
         low + "aborted: 4 mA: stored, trimmed by -1 step. " + own}, // a trim that was not stored
        {Current, "nnndSx", untrimmed + notStored + silent},
        {Current, "nnndU", untrimmed + notStored + restores},
        {Current, "nnnpSn.x", "4 mA 4.000 mA 4.0120 " + notKnown + "4 mA: no reply. " + own},
        {Current, "nnx", "aborted: Nothing was stored. " + own},
        {Current, "nnnpUnx", "4 mA 4.000 mA 4.0120 " + notKnown + "4 mA: broken off. " + restores},
        {Current, "nnnddn",
         "4 mA 4.000 mA 3.9000 3.9000 meter stored, fail; aborted: 4 mA: stored. " + restores, "3.9"},
        {Current, "nnnd", "aborted: Nothing was stored. " + restores, "20.0-5"},
        {Current, "nnnpdddpRn.n", refusedLow + unset + own},
        {Current, "nnnpppppUp", looked + "4 mA: not adjusted. " + restores},
        {Current, "nnnpppppbx", looked + "4 mA: not adjusted. " + own},
        {Voltage, "nnnnn", unmeasured + "Own configuration 330600: restored."},
        {Voltages, "0noppppp", "Offset 0.000 V 0.0400 - module not stored, not judged; " + nothing}};
    for (const auto& [module, keys, told, typed] : cases) {
        WatchedGuide guide(module, 10);
        guide.Watch().On = true;
        if (guide.Input)
            guide.Input->CJCInput = typed;
        for (const char key : std::string_view(keys)) {
            if (guide.Output)
                guide.Output->MeterInput = typed;
            guide.PressAll({&key, 1});
        }
        EXPECT_EQ(Told(guide.Record()), told) << keys;
    }
}

TEST(CalibrationWatch, ShowsReadingErrorAndWhetherItIsStable) {
    const std::string degrees = "none: the module reads degrees here",
                      noSignal = "none: no signal is known for this range";
    const auto input = [](const char* model, std::int16_t range, std::int16_t format) {
        return ModuleRecord{.Address = 5, .Model = model, .DataFormat = format, .InputRange = range};
    };
    const struct {
        ModuleRecord Module;
        const char* Keys;
        double Span;
        std::string Reading, State, Error;
    } cases[] = {
        {Voltages, "n0ppppp", 10, "+0.040 V", "stable", ""},
        {Voltages, "n0oppppp", 10, "+0.040 V", "stable", "+0.040 V (+0.400 % of full scale)"},
        {Voltages, "n0opppp", 10, "+0.040 V", "not stable yet", "+0.040 V (+0.400 % of full scale)"},
        {Voltages, "n0spppp1p", 9, "+9.013 V", "not stable yet", "-0.987 V (-9.870 % of full scale)"},
        {Voltages, "n1spppppSp", 9, "", "no reply", ""},
        {Voltages, "n1spppppRp", 9, "", "refused by the module", ""},
        {Voltages, "n1spppppUp", 9, "", "the port has failed", ""},
        {Voltages, "n1sSp.pppp", 9, "", "no reply", ""}, // not asked again at once
        {Voltages, "n1sUp.ppp", 9, "+9.013 V", "not stable yet", "-0.987 V (-9.870 % of full scale)"},
        {input("8250", 9, 1), "n0oppppp", 5, "+0.0200 V", "stable", "+0.0200 V (+0.400 % of full scale)"},
        {input("8250", 11, 2), "n0oppppp", 5, "+2.00 mV", "stable", "+2.00 mV (+0.400 % of full scale)"},
        {input("8250", 7, 0), "n0op", 0, "+4", "not stable yet", noSignal},
        {input("8250", 7, 2), "n0op", 0, "", "", noSignal},
        {Temperatures, "n0op", 0, "+0.0 \u00b0C", "not stable yet", degrees},
        {Temperatures, "ncp", 0, "+23.5 \u00b0C", "not stable yet", "none: enter the target temperature"},
        {Voltage, "nnnp", 0, "", "", "none: this model does not measure its output"},
        {Current, "nnnp", 0, "+4.012 mA", "not stable yet", "+0.012 mA (+0.060 % of full scale)"}};
    for (const auto& [module, keys, span, reading, state, error] : cases) {
        WatchedGuide guide(module, span);
        guide.Watch().On = true;
        guide.PressAll(keys);
        const ReadingView view = guide.Watch().View();
        EXPECT_EQ(view.Reading + "|" + view.State + "|" + view.Error, reading + "|" + state + "|" + error)
            << keys;
    }
}

TEST(CalibrationWatch, SendsNothingUnlessItIsOn) {
    for (const auto& [module, keys, sent] :
         {std::tuple(Voltages, "n0poppnpbpspn", " $051 $050"),
          {Temperatures, "ncpnp", " $063BD $069+0000AE $063BD $069+0000AE $063BD"},
          {Current, "ppnpnpnpdpnpupn",
           " $082 %0808300600 #0804.000 $083FF $080 #0820.000 $08301 $081 %0808310601"}}) {
        WatchedGuide guide(module, 10);
        guide.PressAll(keys);
        EXPECT_EQ(guide.Sent, sent);
    }
}

} // namespace
} // namespace kavro
