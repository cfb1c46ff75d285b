#pragma once

#include <optional>
#include <string>

namespace kavro {

/// The shortest decimal text that reads back as the same number, never with an exponent: "2.4", "4294967295".
std::string ShortestText(double value);
std::string ShortestText(float value);

/// The whole text, blanks around it allowed, as a number in digits with sign and "."; nothing when it is not
/// one.
std::optional<double> PlainNumber(std::string text);

} // namespace kavro
