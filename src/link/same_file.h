#pragma once

#include <string>

namespace kavro {

/// Whether two paths lead to the same existing file.
bool SameFile(const std::string& first, const std::string& second);

} // namespace kavro
