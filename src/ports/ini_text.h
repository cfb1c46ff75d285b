#pragma once

#include <map>
#include <string>

namespace kavro {

/// The text of an INI file with these keys of its general section set, or removed where the value is empty.
/// Everything else in it stays: other keys and sections, and comments.
std::string WithIniValues(const std::string& text, const std::map<std::string, std::string>& values);

} // namespace kavro
