#include "link/baud.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(Baud, CodesAndRatesBelongTogether) {
    // 115200 stands before 57600.
    constexpr std::int32_t Rates[] = {1200, 2400, 4800, 9600, 19200, 38400, 115200, 57600};
    for (std::int16_t code = 0; code < BaudCodeCount; ++code) {
        EXPECT_EQ(BaudFromCode(code), Rates[code]);
        EXPECT_EQ(CodeFromBaud(Rates[code]), code);
        EXPECT_EQ(BaudNames[static_cast<std::size_t>(code)], std::to_string(Rates[code]));
        EXPECT_TRUE(IsStandardBaud(Rates[code]));
    }
}

TEST(Baud, WhatIsNotInTheTable) {
    EXPECT_EQ(BaudFromCode(8), 57600);
    EXPECT_EQ(BaudFromCode(-3), 150);
    for (const std::int32_t rate : {0, -1200, 600, 14400, 1000000}) {
        EXPECT_EQ(CodeFromBaud(rate), 0) << rate;
        EXPECT_FALSE(IsStandardBaud(rate)) << rate;
    }
}

} // namespace
} // namespace kavro
