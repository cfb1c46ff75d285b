#include "terminal/console_rows.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

using Texts = std::vector<ConsoleText>;

// Console after commands "c1" to "cN" with the replies "r1" to "rN".
ConsoleRows After(int commands) {
    ConsoleRows rows;
    for (int i = 1; i <= commands; ++i)
        rows.ShowTerminalLine("c" + std::to_string(i), "r" + std::to_string(i));
    return rows;
}

// The texts of six pairs from `first` on as a redraw places them, with the prompt below.
Texts Redrawn(int first) {
    Texts texts;
    for (int k = 0; k < 12; ++k) {
        const std::string number = std::to_string(first + k / 2);
        texts.push_back({90, 30 + 240 * k, (k % 2 == 0 ? ">c" : "r") + number});
    }
    texts.push_back({90, 2910, ">"});
    return texts;
}

TEST(ConsoleRows, AppendsSixPairs) {
    Texts expected = {{90, 30, ">"}};
    for (int n = 0; n <= 6; ++n) {
        const ConsoleRows rows = After(n);
        if (n > 0) {
            expected.push_back({225, (n - 1) * 480 + 40, "c" + std::to_string(n)});
            expected.push_back({110, (n - 1) * 480 + 280, "r" + std::to_string(n)});
            expected.push_back({90, n * 480 + 30, ">"});
        }
        EXPECT_EQ(rows.Drawn(), expected) << n;
        EXPECT_EQ(rows.EntryTop(), n * 480) << n;
        EXPECT_EQ(rows.LineCount(), 2 * n);
        EXPECT_EQ(rows.Rows().size(), static_cast<std::size_t>(2 * n));
    }
}

// The count would leave 16 bits after 16383 commands.
TEST(ConsoleRows, RedrawsTheLatestSixPairs) {
    for (const int n : {7, 8, 12, 13, 50, 16382, 16383, 16384, 16385, 16391, 33000}) {
        const ConsoleRows rows = After(n);
        EXPECT_EQ(rows.Drawn(), Redrawn(n - 5)) << n;
        EXPECT_EQ(rows.EntryTop(), 2880) << n;
        EXPECT_EQ(rows.Rows().front(), ">c" + std::to_string(n - 5));
        EXPECT_GT(rows.LineCount(), 13) << n;
    }
}

} // namespace
} // namespace kavro
