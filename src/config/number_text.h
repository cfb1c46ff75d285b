#pragma once

#include <string>

namespace kavro {

/// The shortest decimal text that reads back as the same number, never with an exponent: "2.4", "4294967295".
std::string ShortestText(double value);
std::string ShortestText(float value);

} // namespace kavro
