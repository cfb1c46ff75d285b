#pragma once

#include "link/runtime_failure.h"

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

} // namespace kavro
