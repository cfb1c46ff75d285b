#include "terminal/console_rows.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kavro {
namespace {

// What is drawn after commands "c1" to "cN" with the replies "r1" to "rN": six pairs are appended, and from
// then on the latest six redrawn.
std::vector<ConsoleText> Expected(int commands) {
    const bool redrawn = commands > 6;
    std::vector<ConsoleText> texts;
    if (!redrawn)
        texts.push_back({90, 30, ">"});
    const int first = redrawn ? commands - 5 : 1;
    for (int n = first; n <= commands; ++n) {
        const std::string number = std::to_string(n);
        const int top = (n - first) * 480;
        texts.push_back({redrawn ? 90 : 225, top + (redrawn ? 30 : 40), (redrawn ? ">c" : "c") + number});
        texts.push_back({redrawn ? 90 : 110, top + (redrawn ? 270 : 280), "r" + number});
        if (!redrawn || n == commands)
            texts.push_back({90, top + 510, ">"});
    }
    return texts;
}

TEST(ConsoleRows, ShowTheLatestSixPairs) {
    ConsoleRows rows;
    for (int n = 0; n <= 33000; ++n) { // the count would leave 16 bits after 16383 commands
        if (n > 0)
            rows.ShowTerminalLine("c" + std::to_string(n), "r" + std::to_string(n));
        const int pairs = std::min(n, 6);
        ASSERT_EQ(rows.Drawn(), Expected(n)) << n;
        ASSERT_EQ(rows.EntryTop(), pairs * 480) << n;
        ASSERT_EQ(rows.Rows().size(), static_cast<std::size_t>(2 * pairs)) << n;
        ASSERT_TRUE(n > 6 ? rows.LineCount() > 13 : rows.LineCount() == 2 * n) << n;
    }
}

} // namespace
} // namespace kavro
