#pragma once

#include "link/runtime_failure.h"

#include <gtest/gtest.h>

#include <string>

namespace kavro {

/// What an operation says when it fails; empty when it does not fail.
template <class Operation>
std::string FailureText(Operation operation) {
    try {
        operation();
    } catch (const RuntimeFailure& failure) {
        return failure.what();
    }
    return {};
}

/// Whether `part` occurs in `text`, which is shown when it does not.
inline testing::AssertionResult Contains(const std::string& text, const std::string& part) {
    const bool found = text.find(part) != std::string::npos;
    return (found ? testing::AssertionSuccess() : testing::AssertionFailure()) << '"' << text << '"';
}

} // namespace kavro
