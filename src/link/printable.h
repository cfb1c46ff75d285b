#pragma once

#include <string>
#include <string_view>

namespace kavro {

/// `text` with "?" for every character outside 32 to 126: what a module sends, made harmless to a terminal
/// and of the same width.
std::string Printable(std::string_view text);

} // namespace kavro
