#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// Baud rate of a settings text, "9600,n,8,1". Throws `RuntimeFailure` for a text that is none.
std::int32_t BaudOfSettings(const std::string& text);

} // namespace kavro
