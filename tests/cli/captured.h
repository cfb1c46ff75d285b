#pragma once

#include "cli/kavroctl.h"
#include "cli/subcommand.h"
#include "support/test_session.h"
#include "terminal/test_folder.h"

namespace kavro {

/// What some work of the command line returned, printed and threw.
struct Captured {
    int Exit;
    std::string Out, Err, Failure;
};

template <class Work>
Captured Capture(Work work) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    int exit = -1;
    const std::string failure = FailureText([&] { exit = work(); });
    const std::string out = testing::internal::GetCapturedStdout();
    return {exit, out, testing::internal::GetCapturedStderr(), failure};
}

/// Each of these uses of kavroctl, with --demo, is told to be wrong in one line with its piece.
inline void ExpectWrongUse(const std::vector<std::pair<QStringList, const char*>>& cases) {
    qputenv("XDG_CONFIG_HOME", "/nowhere");
    for (const auto& [arguments, piece] : cases) {
        const Captured outcome =
            Capture([words = arguments + QStringList("--demo")] { return RunKavroctl(words); });
        EXPECT_EQ(outcome.Exit, ExitWrongUse) << piece;
        EXPECT_TRUE(Contains(outcome.Err, piece));
        EXPECT_EQ(std::ranges::count(outcome.Err, '\n'), 1) << outcome.Err;
    }
}

} // namespace kavro
