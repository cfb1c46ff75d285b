#include "monitor/on_change.h"

#include "support/failure_text.h"

#include <tuple>

namespace kavro {
namespace {

TEST(OnChange, PassesWhatTellsSomethingNew) {
    const auto volts = [](double number) {
        return PublishedValue{number, std::to_string(number), "V", "ok", 0};
    };
    const PublishedValue silent = {{}, "", "V", "no reply", 0}, lost = {{}, "", "V", "line lost", 0};
    const PublishedValue word = {1, "01", "hex", "ok", 0}, other = {1.05, "03", "hex", "ok", 0};
    const std::tuple<std::int64_t, PublishedValue, bool> readings[] = {
        {0, volts(4.1), true},      {1000, volts(4.2), false},  {2000, volts(4.21), true},
        {2500, volts(4.15), false}, {3000, silent, true},       {4000, silent, false},
        {5000, lost, true},         {6000, volts(4.21), true},  {65'999, volts(4.2), false},
        {66'000, volts(4.2), true}, {60'000, volts(4.2), true}, // the clock was put back
        {60'500, word, true},       {60'600, word, false},      {60'700, other, true},
    };
    OnChange changes(ParseOnChange("0.1,60"));
    for (auto [ms, value, passes] : readings) {
        value.UnixMs = 1'772'460'309'120 + ms;
        EXPECT_EQ(changes.Passes(5, "0", value), passes) << ms << " " << value.Text;
    }
    EXPECT_TRUE(changes.Passes(5, "1", word)) << "another channel";
    changes.Forget();
    EXPECT_TRUE(changes.Passes(5, "1", word));
}

TEST(OnChange, RefusesWhatIsNoBand) {
    EXPECT_EQ(ParseOnChange("0").RestMs, std::nullopt);
    EXPECT_EQ(ParseOnChange("0.5,3").RestMs, 3000);
    for (const char* text : {"", "x", "-1", "1,", "1,0", "1,x", "1,2,3", "1e3"})
        EXPECT_NE(FailureText([&] { ParseOnChange(text); }), "") << text;
}

} // namespace
} // namespace kavro
