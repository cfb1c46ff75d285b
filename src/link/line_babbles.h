#pragma once

#include "link/runtime_failure.h"

namespace kavro {

/// The line does not fall silent: far more characters came than any reply has, and no carriage return. The
/// port itself works.
class LineBabbles : public RuntimeFailure {
public:
    using RuntimeFailure::RuntimeFailure;
};

} // namespace kavro
