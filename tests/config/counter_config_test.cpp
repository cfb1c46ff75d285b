#include "config/counter_config.h"
#include "config/module_on_line.h"

namespace kavro {
namespace {

constexpr auto Apply = ApplyChange<CounterConfig, CounterConfigOf, ApplyCounterConfig>;

const ModuleRecord Counting = {
    .Model = "8510  ",
    .InputRange = 80,
    .Checksum = 1,
    .Counter = {
        .GateMode = 2, .MaxValue = {100, 100}, .MinAtHigh = 10, .TtlAtHigh = 20, .AlarmSetting = {0, 1}}};

TEST(CounterConfig, CommandsAsBytes) {
    const Lines refused = {"nothing is sent"};
    const std::pair<std::function<void(CounterConfig&)>, Lines> cases[] = {
        {[](auto&) {}, {}},
        {[](auto& c) { c.Values.CounterStatus[1] = 1; }, {"$01511"}},
        {[](auto& c) {
             c.Values.MaxValue = {4294967295.0, 255};
         },
         {"$0130FFFFFFFF", "$0131000000FF"}},
        {[](auto& c) {
             c.Values.MaxValue = {2147483648.9, 100.9};
         },
         {"$013080000000"}},
        {[](auto& c) {
             c.Values.InitialValue = {12.9, -1};
         },
         {"@01P00000000C", "@01P1FFFFFFFF"}},
        {[](auto& c) { c.TtlAtHigh = 2.4, c.TtlAtLow = 0.8; }, {"$011H24", "$011L08"}},
        {[](auto& c) { c.TtlAtHigh = 1.96, c.TtlAtLow = 0.96; }, {"$011L10"}},
        {[](auto& c) { c.MinAtHigh = "10.9 us", c.MinAtLow = "5"; }, {"$010L0005"}},
        {[](auto& c) { c.MinAtHigh = "us", c.MinAtLow = "12345", c.TtlAtLow = 1; },
         {"$010H00us", "$010L12345", "$011L10"}},
        {[](auto& c) { c.Values.GateTime = 1, c.TypeCode = 81; }, {"%0101510644"}},
        {[](auto& c) { c.TypeCode = 81, c.Values.DigitalFilter = 1, c.Values.MaxValue[0] = 1e300; },
         {"%0101510640"}},
        {[](auto& c) { c.Link.Address = 18, c.Values.InputMode = 1; }, {"%0112500640", "$12B1"}},
        {[](auto& c) { c.Link.Address = 256; }, refused},
        {[](auto& c) { c.Values.MaxValue[1] = 4294967296.0; }, refused},
        {[](auto& c) { c.Values.InitialValue[0] = -2147483649.0; }, refused},
        {[](auto& c) { c.Values.AlarmValue[0] = 1e300; }, refused},
        {[](auto& c) { c.MinAtHigh = "32768"; }, refused},
        {[](auto& c) { c.MinAtLow = "7\r%0109500600"; }, refused},
        {[](auto& c) { c.TtlAtLow = 4e30; }, refused}};
    for (const auto& [change, sent] : cases) {
        ModuleOnLine test(Counting);
        const ConfigOutcome outcome = Apply(test, change);
        EXPECT_EQ(outcome == ConfigOutcome::Refused, sent == refused);
        EXPECT_EQ(test.Sent, sent == refused ? Lines{} : sent);
        EXPECT_EQ(test.Session.ConfigResult, sent == refused || sent.empty() ? 2 : 1);
        Apply(test, change);
        EXPECT_TRUE(test.Sent.empty() || outcome == ConfigOutcome::Incomplete) << "all of it is in the entry";
    }
}

TEST(CounterConfig, EachCommandFails) {
    std::vector<ConfigStep> steps = {{"%0101500644", "Module Configuration"},
                                     {"$01B1", "Input Mode Setting"},
                                     {"$01A1", "Gate Mode Setting"},
                                     {"$01501", "Start/Stop Counter"},
                                     {"$01511", "Start/Stop Counter"},
                                     {"$013000000007", "Max Counter Value Setting"},
                                     {"$013100000008", "Max Counter Value Setting"},
                                     {"@01P000000003", "Initial Count Value Setting"},
                                     {"@01P100000004", "Initial Count Value Setting"},
                                     {"$0141", "Digital Filter Enable/Disable"},
                                     {"$010H0021", "Min Input Signal Width at High Level Setting"},
                                     {"$010L0022", "Min Input Signal Width at Low Level Setting"},
                                     {"$011H31", "TTL Input High Trigger Level Setting"},
                                     {"$011L12", "TTL Input Low Trigger Level Setting"},
                                     {"@01EA0", "Alarm Enable/Disable"},
                                     {"@01DA1", "Alarm Enable/Disable"},
                                     {"@01PA00000005", "Alarm Limit Value Setting"},
                                     {"@01SA00000006", "Alarm Limit Value Setting"}};
    for (ConfigStep& step : steps)
        step.Failure += " command failed.";
    ExpectFaultsAtEachStep(Counting, steps, [](ModuleOnLine& test) {
        return Apply(test, [](CounterConfig& c) {
            c.Values = {1, 1, 1, {1, 1}, {7.9, 8}, {3, 4}, 1, 0, 0, 0, 0, {1, 0}, {5, 6}};
            c.MinAtHigh = "21", c.MinAtLow = "22", c.TtlAtHigh = 3.1, c.TtlAtLow = 1.2;
        });
    });
}

TEST(CounterConfig, InitialisationStateIsSpokenToAt00) {
    ModuleOnLine test(Counting);
    test.Session.ScanIndex = 0;
    test.Module.Settings.Initialisation = true;
    const auto change = [](CounterConfig& c) { c.Link = {5, 6, 0}, c.Values.MaxValue[0] = 7.9; };
    EXPECT_EQ(Apply(test, change), ConfigOutcome::Complete);
    EXPECT_EQ(test.Sent, (Lines{"%0005500900", "$003000000007"}));
    EXPECT_EQ(LinkSettingsOf(test.Record), (LinkSettings{5, 6, 0}));
    EXPECT_EQ(test.Record.Counter.MaxValue[0], 7.9) << "kept as it was entered";
}

} // namespace
} // namespace kavro
