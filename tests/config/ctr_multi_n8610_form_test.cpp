#include "config/ctr_config_form.h"
#include "config/module_on_line.h"
#include "config/multi_config_form.h"
#include "config/n8610_config_form.h"
#include "map/family_reads.h"
#include "support/form_driver.h"

#include <QComboBox>
#include <QLabel>

namespace kavro {
namespace {

/// Enters the texts, by control, and clicks OK; whether the form stays open.
bool StaysOpen(QDialog& form, const std::vector<std::pair<const char*, const char*>>& texts) {
    for (const auto& [name, text] : texts) {
        auto& control = Find<QWidget>(form, name);
        control.setProperty(qobject_cast<QComboBox*>(&control) ? "currentText" : "text", text);
    }
    form.show();
    Click(form, "OKBtn");
    return form.isVisible();
}

/// What is sent when OK is clicked without a change; empty when the form shows the entry as it is.
template <class Form>
Lines SentUnchanged(ModuleOnLine& test) {
    Form form(test.Session, test.Messages);
    EXPECT_FALSE(StaysOpen(form, {}));
    return test.Sent;
}

TEST(CtrConfigForm, ShowsAndSends) {
    const CounterSettings settings = {1, 1, 2, {1, 0}, {4e9, 12.9}, {3, 4}, 1, 5, 6, 24, 8, {0, 1}, {7, 8}};
    ModuleOnLine test({.Model = "8510  ", .InputRange = 80, .Counter = settings});
    EXPECT_EQ(SentUnchanged<CtrConfigForm>(test), Lines{});
    CtrConfigForm form(test.Session, test.Messages);
    EXPECT_EQ(Find<QLineEdit>(form, "MaxValue_0").text(), "4000000000");
    EXPECT_TRUE(StaysOpen(form, {{"MaxValue_1", "4294967296"}}));
    EXPECT_FALSE(StaysOpen(form, {{"MaxValue_1", "7"},
                                  {"TTLAtLow", "0.9"},
                                  {"MinAtLow", "5"},
                                  {"AlarmSetting_0", "Enabled"},
                                  {"CounterStatus_1", "Start"}}));
    EXPECT_EQ(test.Sent, (Lines{"$01511", "$013100000007", "$010L0005", "$011L09", "@01EA0"}));
}

TEST(CtrConfigForm, LayoutFollowsTheType) {
    ModuleOnLine test({.Model = "8510  ", .InputRange = 81});
    CtrConfigForm form(test.Session, test.Messages);
    for (const bool counts : {false, true, false}) {
        Find<QComboBox>(form, "TypeCode").setCurrentIndex(counts ? 0 : 1);
        for (const char* name : {"FreqGateTime", "GateMode", "MaxValue_1", "AlarmValue_0"}) {
            const QWidget& control = Find<QWidget>(form, name);
            const bool usable = counts != (control.objectName() == "FreqGateTime");
            EXPECT_EQ(control.isEnabled(), usable) << name;
            EXPECT_EQ(control.toolTip().isEmpty(), usable) << name;
        }
    }
    EXPECT_FALSE(StaysOpen(form, {{"DigitalFilter", "Enabled"}, {"MinAtHigh", "7"}}));
    EXPECT_EQ(test.Sent, Lines{});
}

TEST(MultiConfigForm, LimitsFollowTheRange) {
    // Of the two ranges of this name it is the second.
    ModuleOnLine test({.Model = "8210  ", .HighAlarm = 1, .AlarmMode = 2, .InputRange = 0x0A});
    test.Session.DecimalSeparator = ",";
    EXPECT_EQ(SentUnchanged<MultiConfigForm>(test), Lines{});
    MultiConfigForm form(test.Session, test.Messages);
    Type(Find<QLineEdit>(form, "LowAlarm"), "x.");
    EXPECT_EQ(Find<QLineEdit>(form, "LowAlarm").text(), "+0,0000");
    EXPECT_TRUE(StaysOpen(form, {{"LowAlarm", "-1,5"}}));
    EXPECT_FALSE(StaysOpen(form, {{"AlarmMode", "Disabled"}, {"InputRange", "+/- 15mV"}}));
    EXPECT_EQ(Find<QLabel>(form, "LowAlarmUnit").text(), "mV");
    EXPECT_EQ(test.Sent, (Lines{"%0101000600", "@01DA", "@01PL-01.500", "@01PH+01.000"}));
}

TEST(N8610ConfigForm, ShowsAndSends) {
    ModuleRecord record = {.Model = "8610  "};
    DecodeConverterFormat(0x8017, record);
    ModuleOnLine test(record);
    EXPECT_EQ(SentUnchanged<N8610ConfigForm>(test), Lines{});
    N8610ConfigForm form(test.Session, test.Messages);
    EXPECT_FALSE(Find<QWidget>(form, "SecondBaudRate").isEnabled());
    EXPECT_FALSE(StaysOpen(form, {{"DataBits", "7"}, {"StopBits", "1"}, {"Interface", "RS-422"}}));
    EXPECT_EQ(test.Sent, Lines{"%010100360012"});
}

} // namespace
} // namespace kavro
