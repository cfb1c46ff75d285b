#pragma once

#include <stdexcept>
#include <string>

namespace kavro {

/// What the user must be told: a plain description of a failure at run time (overflow, not a number, a port
/// that is not open, a file that is not there, an index out of bounds). The only exception type of the
/// project.
class RuntimeFailure : public std::runtime_error {
public:
    explicit RuntimeFailure(const std::string& description) : std::runtime_error(description) {}
};

} // namespace kavro
