#include "calib/ad_calibration.h"
#include "calib/calib_session.h"
#include "calib/da_calibration.h"

namespace kavro {
namespace {

// Presses buttons by their letters; a port that was lost is back for the next one. What was told, in all.
template <class Walk>
std::string PressAll(Walk& walk, const char* keys, std::string told = {}) {
    for (const char* key = keys; *key; ++key) {
        if (!told.empty())
            walk.Port().OutputsUntilFailure = 99;
        told += FailureText([&] { walk.Press(*key); });
    }
    return told;
}

struct InputWalk : CalibSession {
    using CalibSession::CalibSession;
    // Next, Back, Offset, Span, CJC.
    void Press(char key) {
        key == 'n'   ? Calibration.NextBtn_Click()
        : key == 'b' ? Calibration.BackBtn_Click()
        : key == 'o' ? Calibration.OffsetBtn_Click()
        : key == 's' ? Calibration.SpanBtn_Click()
                     : Calibration.CJCBtn_Click();
    }
    // Step, enabled buttons and caption, then what is visible; the guide text by its length.
    std::string Shown() const {
        const AdCalibrationView& view = Calibration.View();
        return std::to_string(view.StepNo) + (view.BackEnabled ? "B" : "") + (view.NextEnabled ? "N " : " ") +
               view.NextCaption + (view.GuideShown ? " " + std::to_string(view.GuideText.size()) : "") +
               (view.ChoicesShown ? " Choices" : "") + (view.CJCChoiceShown ? " CJC" : "") +
               (view.ReadingShown ? " [" + view.Reading + "]" : "") +
               (view.CJCShown ? " T " + view.Temperature + " " + Calibration.CJCInput : "");
    }
    AdCalibration Calibration{Session, 4, [this](int ms) { Time.Sleep(ms); }};
};

TEST(AdCalibration, WalksItsStepsWithoutTestingReplies) {
    const std::string warm = ">+0025.3\r", read = "$123 $129+0000 $123",
                      full = "$129+0000 $123 $129+0133 $123";
    const struct {
        const char *Model, *Keys;
        std::string Shown, Sent = {}, Reading = {}, Typed = {};
        int Ms = 0;
        std::int16_t Range = 8;
        int Outputs = 99; // until the port is lost
    } cases[] = {
        {"8210", "", "1N Next > 79"},
        {"8210", "n", "2B Next > 108 Choices CJC"},
        {"8220", "n", "2B Next > 108 Choices"},
        {"8260", "ncb", "2B Execute 108 Choices CJC", "$123", warm},
        {"8210", "ncbs", "3BN Execute 131 [+10 V]", "$123", warm},
        {"8210", "nobb", "1N Execute 79"},
        {"8260", "ns", "3BN Execute 135 []", "", "", "", 0, 25},
        {"8230", "no", "3BN Execute 140 [0 ohms]", "", "", "", 0, 42},
        {"8230", "ns", "3BN Execute 140 [60 ohms]", "", "", "", 0, 42},
        {"8999", "no", "3BN Execute 0 []", "", "", "", 0, -1},
        {"8240", "nobbnon", "3BN Execute 131 [0 mV]", "$121", "", "", 100, 10},
        {"8250", "nsn", "3BN Execute 135 [0 mV]", "$120", "", "", 100, 7},
        {"8210", "ncn", "3BN Execute T 25.3 25.3", read + " $129+0000 $123", warm, "25.3", 2100},
        {"8210", "ncn", "3BN Execute T 25.3 23.3", read + " $129-0083 $123", warm, "23.3", 2100},
        {"8210", "ncn", "3BN Execute T .0 4.78125", read + " $129+0138 $123", ">+0.0\r", "4.78125", 2100},
        {"8210", "ncn", "3BN Execute T 25.3 1067.1", read + " $129+109FB $123", warm, "1067.1", 2100},
        {"8210", "ncn", "3BN Execute T 25.3 0", read + " $129+0000 $123", warm, "2.5-1", 2100},
        {"8210", "ncn", "3BN Execute T  13", read, "?12\r", "13", 1000},
        {"8210", "ncn", "3BN Execute T  13", read, ">+25.3x\r", "13", 1000},
        {"8210", "ncn", "3BN Execute T  13", read, ">25.3\r", "13", 1000},
        {"8210", "ncn", "3BN Execute T  30", read, "", "30", 1200},
        {"8210", "ncn", "3BN Execute T  30", read, ">1e99\r", "30", 1000},
        {"8210", "ncn", "3BN Execute T 25.3 -99999999999Ove", read, warm, "-99999999999", 1000},
        {"8210", "ncn", "3BN Execute T 25.3 30The", "open " + full, warm, "30", 2100, 8, 0},
        {"8210", "ncnn", "3BN Execute T 25.3 30The", "$123 open " + full, warm, "30", 2100, 8, 1},
        {"8210", "ncnn", "3BN Execute T 25.3 30The", "$123 $129+0000 open " + full, warm, "30", 3100, 8, 2},
        {"8210", "ncn", "3BN Execute T  30The", read + " $129+0133", warm, "30", 2100, 8, 4}};
    for (const auto& [model, keys, shown, sent, reading, typed, ms, range, outputs] : cases) {
        InputWalk walk(model, 18, range, reading);
        walk.Calibration.CJCInput = typed;
        walk.Port().OutputsUntilFailure = outputs;
        const std::string told = PressAll(walk, keys).substr(0, 3);
        EXPECT_EQ(walk.Shown() + told, shown) << model << keys << outputs;
        EXPECT_EQ(walk.Sent(), sent) << typed << outputs;
        EXPECT_EQ(walk.Elapsed(), ms) << typed << outputs;
    }
}

struct OutputWalk : CalibSession {
    using CalibSession::CalibSession;
    // Next (Done restores, as in the dialog), Back, Trim Up, Trim Down, Exit.
    void Press(char key) {
        if (key == 'x')
            Calibration->ExitBtn_Click();
        else if (key == 'n' && Calibration->NextBtn_Click())
            Calibration->Restore();
        else if (key == 'b')
            Calibration->BackBtn_Click();
        else if (key != 'n')
            key == 'u' ? Calibration->TrimUpBtn_Click() : Calibration->TrimDownBtn_Click();
    }
    std::string Shown() const {
        const DaCalibrationView& view = Calibration->View();
        return std::to_string(view.StepNo) + (view.BackEnabled ? "B" : "") +
               (view.TrimShown ? " Trim " : " ") + view.NextCaption;
    }
    std::optional<DaCalibration> Calibration;
};

// The port is lost after so many `Outputs` beyond the first.
TEST(DaCalibration, WalksItsStepsAndRestoresWhatItHasRead) {
    const struct {
        int Outputs = 0;
        const char *Keys = "", *Shown = "", *Sent = "", *Config = "!01310842\r";
        std::int16_t Checksum = 0, ScanIndex = -1;
    } cases[] = {
        {99, "nbnnnuudb", "3B Next >", "$012 %0101300800 #0104.000 $01301 $01301 $013FF"},
        {99, "nnnbnnb", "4B Trim Next >", "$012 %0101300800 #0104.000 #0104.000 $010 #0120.000 #0104.000"},
        {99, "nnnnnx", "5B Trim Done", "$012 %0101300800 #0104.000 $010 #0120.000 $011 %0101310842"},
        {0, "n", "2B Next >", "$012 open %0101300800"},
        {1, "nnnn", "4B Trim Next >", "$012 %0101300800 open %0101300800 #0104.000"},
        {1, "nnnb", "3B Next >", "$012 %0101300800 open %0101300800"},
        {2, "nnnuu", "4B Trim Next >", "$012 %0101300800 #0104.000 open %0101300800 #0104.000"},
        {2, "nnnnn", "4B Trim Next >", "$012 %0101300800 #0104.000 open %0101300800 #0104.000"},
        {3, "nnnnn", "5B Trim Done", "$012 %0101300800 #0104.000 $010 open %0101300800 #0120.000"},
        {2, "nnnxx", "4B Trim Next >", "$012 %0101300800 #0104.000 open %0101310842"},
        {99, "x", "1 Next >", "$012 %0101300600 %0101300600", "!01300600\r"},
        {99, "x", "1 Next >", "$002 %0001300800 %0001310842", "!01310842\r", 0, 4},
        {99, "x", "1 Next >", "$012B7 %010130060010 %010130060010", "!01300600AB\r", 1},
        {99, "x", "1 Next >", "$012", "!01300600"}, // without its end
        {99, "x", "1 Next >", "$012", "?01300600\r"},
        {99, "x", "1 Next >", "$012", "!013006000\r"}};
    for (const auto& [outputs, keys, shown, sent, config, checksum, scanIndex] : cases) {
        OutputWalk walk("8310", 1, 49);
        walk.Session.ModuleTable[4].Checksum = checksum;
        walk.Session.ScanIndex = scanIndex;
        walk.Port().Queue = {{config}};
        walk.Calibration.emplace(walk.Session, 4);
        walk.Port().OutputsUntilFailure = outputs;
        const std::string told = PressAll(walk, keys, FailureText([&] { walk.Calibration->SetUp(); }));
        EXPECT_TRUE(Contains(told, outputs < 99 ? "is 310842; the command %0101310842" : ""));
        EXPECT_EQ(walk.Shown(), shown) << outputs << keys;
        EXPECT_EQ(walk.Sent(), sent) << outputs << keys;
    }
}

} // namespace
} // namespace kavro
