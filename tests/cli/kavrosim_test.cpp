#include "cli/kavrosim.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kavro {
namespace {

TEST(Kavrosim, LogsCommandAndReplyOnOneLine) {
    EXPECT_EQ(
        LogLine({.Moment = 13'345'678, .Baud = 9600, .Command = "$012", .Reply = "!01\xFF\n~\r"}, 1'000'000),
        "     12.345 s   9600 baud  $012<0D> -> !01<FF><0A>~<0D>");
    EXPECT_EQ(LogLine({.Moment = 0, .Baud = 115200, .Command = "", .Reply = ""}, 0),
              "      0.000 s 115200 baud  <0D> -> (silence)");
}

TEST(Kavrosim, SaysInOneLineWhyItDoesNotStart) {
    const std::tuple<QStringList, int, const char*> cases[] = {
        {{"--loud"}, 2, "Unknown option 'loud'"},
        {{"line.json"}, 2, "\"line.json\" is not understood"},
        {{"a\nb"}, 2, "\"a?b\" is not understood"},
        {{"--seed", "4294967296"}, 2, "--seed needs a whole number"},
        {{"--line"}, 2, "Missing value after '--line'"},
        {{"--line", ""}, 2, "--line needs the path of a file."},
        {{"--link", ""}, 2, "--link needs a path."},
        {{"--line", "/nowhere.json"}, 3, "The line file \"/nowhere.json\" cannot be used"},
        {{"--link", "/"}, 3, "The link \"/\" cannot be made"}};
    for (const auto& [arguments, exitCode, description] : cases) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(RunKavrosim(QStringList{"kavrosim"} + arguments), exitCode);
        const std::string error = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(error.starts_with(std::string("kavrosim: ") + description)) << error;
        EXPECT_EQ(std::ranges::count(error, '\n'), 1) << error;
    }
}

} // namespace
} // namespace kavro
