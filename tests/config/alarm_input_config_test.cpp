#include "config/alarm_input_config.h"
#include "config/module_on_line.h"

namespace kavro {
namespace {

constexpr auto Apply = ApplyChange<AlarmInputConfig, AlarmInputConfigOf, ApplyAlarmInputConfig>;

const ModuleRecord TenVolts = {
    .Model = "8220  ", .HighAlarm = 8.5F, .LowAlarm = -1.5F, .InputRange = 8, .Checksum = 1};

TEST(AlarmInputConfig, CommandsAsBytes) {
    const std::pair<std::function<void(AlarmInputConfig&)>, Lines> cases[] = {
        {[](auto& c) { c.LowAlarm = "-1.5004"; }, {}},
        {[](auto& c) { c.LowAlarm = " -1,5006 ", c.HighAlarm = "10"; }, {"@01PL-01.501", "@01PH+10.000"}},
        {[](auto& c) { c.Link.Address = 2, c.AlarmMode = 1; }, {"%0102080640", "@02EA1"}},
        {[](auto& c) { c.InputRange = 12; }, {"%01010C0640", "@01PL-001.50", "@01PH+008.50"}}};
    for (const auto& [change, sent] : cases) {
        ModuleOnLine test(TenVolts);
        test.Session.DecimalSeparator = ",";
        EXPECT_EQ(Apply(test, change), ConfigOutcome::Complete);
        EXPECT_EQ(test.Sent, sent);
        EXPECT_EQ(test.Session.ConfigResult, sent.empty() ? 2 : 1);
        Apply(test, change);
        EXPECT_EQ(test.Sent, Lines{}) << "all of it is in the entry";
    }
}

TEST(AlarmInputConfig, ImpossibleLimitsAreRefused) {
    for (const char* text : {"10.001", "-11", "", "-", ".", "1.5 V", "--1", "1.2.3", "inf", "nan", "1e0"}) {
        ModuleOnLine test(TenVolts);
        EXPECT_EQ(Apply(test, [&](auto& c) { c.LowAlarm = text; }), ConfigOutcome::Refused);
        EXPECT_EQ(test.Messages.Shown,
                  (ShownMessages{{"The low alarm limit must be a number from -10 to +10 V.", "Error"}}));
        EXPECT_EQ(test.Sent, Lines{});
    }
    ModuleOnLine unknownRange({.Model = "8220  ", .InputRange = 7});
    EXPECT_EQ(Apply(unknownRange, [](auto&) {}), ConfigOutcome::Refused);
    EXPECT_EQ(unknownRange.Messages.Shown, (ShownMessages{{"Select an input range.", "Error"}}));
}

TEST(AlarmInputConfig, EachCommandFails) {
    const std::vector<ConfigStep> steps = {{"%0101080641", ConfigFailedText},
                                           {"@01EA2", "Alarm mode configuration failed."},
                                           {"@01PL-02.000", "Low alarm limit configuration failed."},
                                           {"@01PH+02.000", "High alarm limit configuration failed."}};
    ExpectFaultsAtEachStep(TenVolts, steps, [](ModuleOnLine& test) {
        return Apply(
            test, [](auto& c) { c.DataFormat = 1, c.AlarmMode = 2, c.LowAlarm = "-2", c.HighAlarm = "2"; });
    });
}

TEST(AlarmInputConfig, LimitsOfARefusedRangeAreNotSent) {
    ModuleOnLine test(TenVolts);
    test.Module.CommandFaults = [](std::string_view command) { return Faults{.Refuse = command[0] == '%'}; };
    Apply(test, [](auto& c) { c.InputRange = 12, c.LowAlarm = "-2", c.HighAlarm = "100"; });
    EXPECT_EQ(test.Sent, (Lines{"%01010C0640", "@01PL-02.000"}));
    EXPECT_EQ(test.Messages.Shown, (ShownMessages{{ConfigFailedText, "Error"},
                                                  {"High alarm limit configuration failed.", "Error"},
                                                  CompleteMessage}));
    EXPECT_EQ(test.Record.HighAlarm, 8.5F);
}

} // namespace
} // namespace kavro
