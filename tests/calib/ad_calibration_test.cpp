#include "calib/ad_calibration.h"

#include "calib/calib_session.h"
#include "map/module_access.h"
#include "sim/analog_input_module.h"
#include "sim/module_factory.h"
#include "support/failure_text.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

// Presses Next, Back, Offset, Span and CJC by their letters.
void Press(AdCalibration& calibration, const std::string& keys) {
    for (const char key : keys)
        key == 'n'   ? calibration.NextBtn_Click()
        : key == 'b' ? calibration.BackBtn_Click()
        : key == 'o' ? calibration.OffsetBtn_Click()
        : key == 's' ? calibration.SpanBtn_Click()
                     : calibration.CJCBtn_Click();
}

// The calibration of a module at 12 (hexadecimal) that answers its cold-junction read.
struct Walk : CalibSession {
    Walk(const std::string& model, std::int16_t range, const std::string& reading, const std::string& typed)
        : CalibSession(model, 18, range) {
        Port().Replies["9600 $129+0000"] = {"!12\r"};
        Port().Replies["9600 $123"] = {reading};
        Session.DecimalSeparator = typed.find(',') == std::string::npos ? "." : ",";
        Calibration.CJCInput = typed;
    }
    // Step, enabled buttons and caption, then what is visible.
    std::string Shown() const {
        const AdCalibrationView& view = Calibration.View();
        return std::to_string(view.StepNo) + (view.BackEnabled ? "B" : "") + (view.NextEnabled ? "N " : " ") +
               view.NextCaption + (view.GuideShown ? " Guide" : "") + (view.ChoicesShown ? " Choices" : "") +
               (view.CJCChoiceShown ? " CJC" : "") + (view.ReadingShown ? " [" + view.Reading + "]" : "") +
               (view.CJCShown ? " T " + view.Temperature + " " + Calibration.CJCInput : "");
    }
    AdCalibration Calibration{Session, 4, [this](int ms) { Time.Sleep(ms); }};
};

TEST(AdCalibration, ShowsItsStepsWithWhatEarlierStepsLeft) {
    const struct {
        const char* Model;
        std::int16_t Range;
        const char *Keys, *Shown, *Guide;
    } cases[] = {
        {"8210", 8, "", "1N Next > Guide", "warm up"},
        {"8210", 8, "n", "2B Next > Guide Choices CJC", "range shown above"},
        {"8260", 8, "n", "2B Next > Guide Choices CJC", ""},
        {"8220", 8, "n", "2B Next > Guide Choices", ""},
        {"8210", 8, "ncb", "2B Execute Guide Choices CJC", ""},
        {"8210", 8, "ncbs", "3BN Execute Guide [+10 V]", "+IN and -IN"},
        {"8210", 8, "nobb", "1N Execute Guide", "warm up"},
        {"8240", 10, "nobbno", "3BN Execute Guide [0 mV]", "+IN and -IN"},
        {"8250", 7, "ns", "3BN Execute Guide [0 mV]", "Vin0+ and Vin0-"},
        {"8260", 25, "ns", "3BN Execute Guide []", "Vin0+ and Vin0-"},
        {"8230", 40, "ns", "3BN Execute Guide [350 ohms]", "SENSE0+"},
        {"8230", 42, "no", "3BN Execute Guide [0 ohms]", "SENSE0+"},
        {"8230", 42, "ns", "3BN Execute Guide [60 ohms]", "SENSE0+"},
        {"8999", -1, "no", "3BN Execute Guide []", ""},
    };
    for (const auto& [model, range, keys, shown, guide] : cases) {
        Walk walk(model, range, "", "");
        Press(walk.Calibration, keys);
        EXPECT_EQ(walk.Shown(), shown) << model << " " << keys;
        EXPECT_TRUE(Contains(walk.Calibration.View().GuideText, guide));
    }
}

TEST(AdCalibration, ExecutesWithoutTestingReplies) {
    for (const auto& [reply, ms] : {std::pair("", 100), {"?12D3\r", 0}, {"!1200\r", 0}})
        for (const char* keys : {"non", "nsn"}) {
            Walk walk("8210", 8, "", "");
            walk.Session.ModuleTable[4].Checksum = 1;
            walk.Port().Queue = {{reply}};
            Press(walk.Calibration, keys);
            EXPECT_EQ(walk.Sent(), keys[1] == 'o' ? "$121B8" : "$120B7");
            EXPECT_EQ(walk.Shown().substr(0, 11), "3BN Execute");
            EXPECT_EQ(walk.Elapsed(), ms);
        }
}

TEST(AdCalibration, CorrectsTheColdJunction) {
    const std::string nines(400, '9');
    const struct {
        std::string Reading, Typed, Sent, Shown; // after clearing the correction and reading
        int Ms;
    } cases[] = {
        {">+0025.3\r", "25.3", " $129+0000 $123", "25.3 25.3", 2000},
        {">+0025.3\r", "23.3", " $129-0083 $123", "25.3 23.3", 2100},
        {">+0025.3\r", "+26,3", " $129+0041 $123", "25.3 +26,3", 2100},
        {">+0000.0\r", "4.78125", " $129+0138 $123", ".0 4.78125", 2100},    // 312.5 counts
        {">-0000.3\r", "14.04375", " $129+03AA $123", "-.3 14.04375", 2100}, // 937.5
        {">+0025.3\r", "1067.1", " $129+109FB $123", "25.3 1067.1", 2100},   // FC in double precision
        {">+0025.3\r", "", " $129+0000 $123", "25.3 0", 2000},
        {">+0025.3\r", "1-2", " $129+0000 $123", "25.3 0", 2000},
        {">+0025.3\r", "2.5.1", " $129+0000 $123", "25.3 0", 2000},
        {">+0025.3\r", "nan", " $129+0000 $123", "25.3 0", 2000},
        {">+0025.3\r", "-99999999999", "", "25.3 -99999999999Overflow", 1000},
        {">+0025.3\r", nines, "", "25.3 " + nines + "Overflow", 1000},
        {"?12\r", "13", " $129+0041 $123", "12.0 13", 2100}, // replies are not tested
        {"", "30", "", " 30", 1200},
        {">\r", "30", "", " 30", 1000},
        {">1e99\r", "30", "", " 30", 1000},
    };
    for (const auto& [reading, typed, sent, shown, ms] : cases) {
        Walk walk("8210", 8, reading, typed);
        const std::string told = FailureText([&] { Press(walk.Calibration, "ncn"); });
        EXPECT_EQ(walk.Sent(), "$123 $129+0000 $123" + sent) << typed;
        EXPECT_EQ(walk.Shown() + told.substr(0, 8), "3BN Execute T " + shown);
        EXPECT_EQ(walk.Elapsed(), ms) << typed;
    }
    Walk walk("8210", 8, ">+0025.3\r", "26.3");
    walk.Session.DecimalSeparator = ","; // where "." may group digits
    Press(walk.Calibration, "ncn");
    EXPECT_EQ(walk.Shown(), "3BN Execute T 25.3 0");
}

TEST(AdCalibration, CanBeTriedAgainAfterTheLossOfThePort) {
    const struct {
        const char* Keys;
        int Outputs; // before the loss
        const char* Sent;
    } cases[] = {{"non", 0, "$121"},      {"nsn", 0, "$120"},      {"nc", 0, "$129+0000"},
                 {"ncn", 1, "$129+0000"}, {"ncn", 2, "$129+0000"}, {"ncn", 3, "$129+0000"},
                 {"ncn", 4, "$129+0000"}};
    for (const auto& [keys, outputs, sent] : cases) {
        Walk walk("8210", 8, ">+0025.3\r", "30");
        walk.Port().OutputsUntilFailure = outputs;
        EXPECT_TRUE(
            Contains(FailureText([&, keys = keys] { Press(walk.Calibration, keys); }), "disconnected"))
            << keys;
        EXPECT_EQ(walk.Calibration.View().StepNo, 3);
        EXPECT_EQ(walk.Calibration.View().Temperature.empty(), keys[2] == 0 || outputs == 4);
        walk.Port().OutputsUntilFailure = 9;
        walk.Sent();
        Press(walk.Calibration, "n");
        EXPECT_TRUE(walk.Sent().starts_with(std::string("open ") + sent)) << keys << outputs;
    }
}

TEST(AdCalibration, TakesAwayTheErrorsOfAModule) {
    SimulatedSession test;
    auto& input = static_cast<AnalogInputModule&>(test.Line.Add(MakeModule("8260", 1)));
    input.Settings.TypeCode = 0x0E;
    input.OffsetError = input.SpanError = 1;
    input.ColdJunctionError = -1.5;
    input.HeldSignal = 20;
    SelectModule(test.Session, "8260", 1, 0x0E);
    const auto reading = [&] { return ReadAnalogInput(test.Session, 4, 0).Value.value_or(0); };
    AdCalibration calibration(test.Session, 4, [&](int ms) { test.Time.Sleep(ms); });
    EXPECT_NEAR(reading(), 20 + 7.6 + 0.2 - 1.5, 0.02);
    calibration.CJCInput = "25.3"; // what the cold junction really has
    Press(calibration, "nonbsnbcn");
    EXPECT_EQ(calibration.View().Temperature, "25.3");
    EXPECT_NEAR(reading(), 20, 0.02);
}

} // namespace
} // namespace kavro
