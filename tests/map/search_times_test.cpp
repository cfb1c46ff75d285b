#include "map/time_text.h"

#include <gtest/gtest.h>

#include <tuple>

namespace kavro {
namespace {

TEST(SearchTimes, AreSaidAsExactlyAsIsOfUse) {
    const std::pair<std::int64_t, const char*> times[] = {{-5, "0 s"},
                                                          {1, "1 s"},
                                                          {119'000, "119 s"},
                                                          {119'001, "2 min"},
                                                          {120'001, "2 min 10 s"},
                                                          {160'000, "2 min 40 s"},
                                                          {175'000, "3 min"},
                                                          {590'001, "10 min"},
                                                          {600'001, "11 min"},
                                                          {2'457'600, "41 min"}};
    for (const auto& [milliseconds, text] : times)
        EXPECT_EQ(TimeText(milliseconds), text) << milliseconds;

    using Rates = std::array<std::int16_t, 9>;
    const Rates all = {1, 1, 1, 1, 1, 1, 1, 1}, only9600 = {0, 0, 0, 1};
    const std::tuple<SearchScope, const char*, const char*> searches[] = {
        {{.BaudEnabled = all}, "at most 41 min", "about 3 min"},
        {{.BaudEnabled = only9600}, "at most 53 s", "about 19 s"},
        {{.BaudEnabled = only9600, .Addresses = 1}, "at most 2 s", "about 1 s"},
        {{.BaudEnabled = only9600, .ReplyTimeoutMs = 6553}, "at most 56 min", "about 19 s"},
        {{.BaudEnabled = only9600, .AnswerWithinMs = 1000}, "at most 53 s", "about 8 min 40 s"},
        {{}, "", ""}};
    for (const auto& [scope, exact, fast] : searches) {
        EXPECT_EQ(SearchTimeText(scope, false), exact);
        EXPECT_EQ(SearchTimeText(scope, true), fast);
    }
}

} // namespace
} // namespace kavro
