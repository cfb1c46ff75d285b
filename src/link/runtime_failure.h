#pragma once

#include <stdexcept>
#include <string>

namespace kavro {

/// What the user must be told: a plain description of a failure at run time (overflow, not a number, a port
/// that is not open, a file that is not there, an index out of bounds). The only exception type of the
/// project, but for the kinds of it below.
class RuntimeFailure : public std::runtime_error {
public:
    explicit RuntimeFailure(const std::string& description) : std::runtime_error(description) {}
};

/// Characters come without end and without a carriage return.
class LineBabbles : public RuntimeFailure {
public:
    using RuntimeFailure::RuntimeFailure;
};

/// A port that works does not take a baud rate.
class RateRefused : public RuntimeFailure {
public:
    using RuntimeFailure::RuntimeFailure;
};

/// The user ended the work at hand, in the middle of a transaction: no failure of the line.
class Interruption : public RuntimeFailure {
public:
    Interruption() : RuntimeFailure("Interrupted.") {}
};

} // namespace kavro
