#pragma once

#include "support/failure_text.h"

#include <gtest/gtest.h>

#include <string>

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

} // namespace kavro
