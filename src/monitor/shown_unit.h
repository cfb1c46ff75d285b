#pragma once

#include <string>

namespace kavro {

/// A unit as people write it, UTF-8: "°C" for "C", "Ω" for "ohms"; any other as it is. For windows and what
/// is saved of them as a picture: files of values, `kavroctl` and the modules have "C" and "ohms".
std::string ShownUnit(const std::string& unit);

} // namespace kavro
