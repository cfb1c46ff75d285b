#include "calib/da_calibration.h"

#include "calib/calib_session.h"
#include "map/module_access.h"
#include "sim/analog_output_module.h"
#include "sim/module_factory.h"
#include "support/failure_text.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

// Presses Next (Done restores, as in the dialog), Back, Trim Up, Trim Down and Exit by their letters.
void Press(DaCalibration& calibration, const std::string& keys) {
    for (const char key : keys)
        if (key == 'x' || (key == 'n' && calibration.NextBtn_Click()))
            calibration.Restore();
        else if (key != 'n')
            key == 'b'   ? calibration.BackBtn_Click()
            : key == 'u' ? calibration.TrimUpBtn_Click()
                         : calibration.TrimDownBtn_Click();
}

// The calibration of a module at 01 that answers nothing but its configuration.
struct Walk : CalibSession {
    explicit Walk(const char* config = "!01310842\r") : CalibSession("8310", 1) {
        for (const char* read : {"9600 $012", "9600 $002", "9600 $012B7"})
            Port().Replies[read] = {config};
    }
    void Start(const std::string& keys = {}) {
        Calibration.emplace(Session, 4);
        Calibration->SetUp();
        Press(*Calibration, keys);
    }
    std::string Shown() const {
        const DaCalibrationView& view = Calibration->View();
        return std::to_string(view.StepNo) + (view.BackEnabled ? "B" : "") +
               (view.TrimShown ? " Trim " : " ") + view.NextCaption;
    }
    std::optional<DaCalibration> Calibration;
};

// `Keys`, then what `Then` sends and leads to; with `Outputs` the port is lost after as many commands, and it
// is back for `Then` alone.
TEST(DaCalibration, WalksItsSteps) {
    const struct {
        int Outputs;
        const char *Keys, *Then, *Sent, *Shown;
    } cases[] = {
        {0, "", "n", "", "2B Next >"},
        {0, "n", "b", "", "1 Next >"},
        {0, "nbnnn", "uud", "$01301 $01301 $013FF", "4B Trim Next >"},
        {0, "nnn", "bn", "#0104.000", "4B Trim Next >"},
        {0, "nnn", "b", "", "3B Next >"},
        {0, "nnn", "n", "$010 #0120.000", "5B Trim Done"},
        {0, "nnnn", "b", "#0104.000", "4B Trim Next >"},
        {0, "nnnnb", "nd", "$010 #0120.000 $013FF", "5B Trim Done"},
        {0, "nnnn", "nx", "$011 %0101310842", "5B Trim Done"}, // restored once
        {0, "nnn", "x", "%0101310842", "4B Trim Next >"},
        {1, "", "n", "open %0101300800", "1 Next >"},
        {1, "", "x", "open %0101310842", "1 Next >"},
        {2, "nnn", "n", "open %0101300800 #0104.000", "4B Trim Next >"},
        {2, "nnn", "b", "open %0101300800", "3B Next >"},
        {3, "nnnu", "u", "open %0101300800 #0104.000", "4B Trim Next >"},
        {3, "nnnn", "nn", "open %0101300800 #0104.000 $010 #0120.000", "5B Trim Done"},
        {4, "nnnn", "n", "open %0101300800 #0120.000", "5B Trim Done"},
        {5, "nnnnn", "nn", "open %0101300800 #0120.000 $011 %0101310842", "5B Trim Done"},
        {6, "nnnnn", "x", "open %0101310842", "5B Trim Done"},
    };
    for (const auto& [outputs, keys, then, sent, shown] : cases) {
        Walk walk;
        walk.Port().OutputsUntilFailure = outputs > 0 ? outputs : 99;
        const std::string told = FailureText([&, keys = keys] { walk.Start(keys); });
        EXPECT_TRUE(Contains(told, outputs > 0 ? "is 310842; the command %0101310842" : ""));
        if (outputs > 0) {
            walk.Port().FailOpen = true;
            EXPECT_TRUE(
                Contains(FailureText([&, then = then] { Press(*walk.Calibration, then); }), "%0101310842"));
            walk.Port().FailOpen = false;
        }
        walk.Port().OutputsUntilFailure = 99;
        walk.Sent();
        Press(*walk.Calibration, then);
        EXPECT_EQ(walk.Sent(), sent) << outputs << " " << keys << " " << then;
        EXPECT_EQ(walk.Shown(), shown) << outputs << " " << keys << " " << then;
    }
}

TEST(DaCalibration, RestoresWhatItHasRead) {
    const struct {
        std::int16_t Checksum, ScanIndex;
        const char *Config, *Sent;
        int Ms;
    } cases[] = {
        {0, -1, "!01300600\r", "$012 %0101300600 %0101300600", 800},
        {0, 4, "!01310842\r", "$002 %0001300800 %0001310842", 800}, // keeps its own address
        {1, -1, "!01300600AB\r", "$012B7 %010130060010 %010130060010", 800},
        {1, -1, "!01300600AC\r", "$012B7", 0},
        {0, -1, "!01300600", "$012", 100},
        {0, -1, "?01\r", "$012", 0},
        {0, -1, ">01300600\r", "$012", 0},
        {0, -1, "!0130060\r", "$012", 0},
        {0, -1, "!013006000\r", "$012", 0},
    };
    for (const auto& [checksum, scanIndex, config, sent, ms] : cases) {
        Walk walk(config);
        walk.Session.ModuleTable[4].Checksum = checksum;
        walk.Session.ScanIndex = scanIndex;
        walk.Start("x");
        EXPECT_EQ(walk.Sent(), sent) << config;
        EXPECT_EQ(walk.Elapsed(), ms) << config;
    }
    Walk walk("");
    walk.Start("nnnnn");
    EXPECT_EQ(walk.Sent(), "$012 #0104.000 $010 #0120.000 $011");
}

TEST(DaCalibration, TakesAwayTheErrorsOfAModule) {
    SimulatedSession test;
    auto& output = static_cast<AnalogOutputModule&>(test.Line.Add(MakeModule("8310", 1)));
    output.Settings.TypeCode = 0x31;
    output.Settings.DataFormat = 2;
    output.Error4mA = 0.012;
    output.Error20mA = -0.008;
    SelectModule(test.Session, "8310", 1);
    const auto terminals = [&](const char* drive) {
        ExchangeWithModule(test.Session, 4, drive, 100);
        ExchangeWithModule(test.Session, 4, "$018", 100);
        return test.Session.Line.ReplyText;
    };
    EXPECT_EQ(terminals("#01000") + terminals("#01FFF"), "!0104.012!0119.992");
    DaCalibration calibration(test.Session, 4);
    calibration.SetUp();
    Press(calibration, "nnndddnuun");
    EXPECT_EQ(terminals("#01000") + terminals("#01FFF"), "!0104.000!0120.000"); // in its own range and format
}

} // namespace
} // namespace kavro
