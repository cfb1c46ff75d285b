#pragma once

#include <string>
#include <string_view>

namespace kavro {

/// Bytes as a JSON string with its quotes, in plain ASCII: a byte is the character of the same number, so
/// that nothing is lost. Short forms where JSON has them, else "\u00XX" below blank and from 0x7F up.
std::string JsonBytes(std::string_view bytes);

/// A UTF-8 text as a JSON string with its quotes.
std::string JsonText(std::string_view text);

} // namespace kavro
