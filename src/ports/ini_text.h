#pragma once

#include <map>
#include <string>

namespace kavro {

/// The text of the INI file at a path that is about to be saved, empty when there is none. Throws
/// `RuntimeFailure` that says that `what` cannot be saved, when it cannot be read.
std::string IniText(const std::string& path, const std::string& what);

/// The text of an INI file with these keys of its general section set, or removed where the value is empty.
/// Everything else in it stays: other keys and sections, and comments.
std::string WithIniValues(const std::string& text, const std::map<std::string, std::string>& values);

} // namespace kavro
