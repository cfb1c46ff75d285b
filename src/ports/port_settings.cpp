#include "ports/port_settings.h"

#include "link/runtime_failure.h"

#include <charconv>
#include <string_view>

namespace kavro {

std::int32_t BaudOfSettings(const std::string& text) {
    const std::string_view suffix = ",n,8,1";
    const bool known = text.size() > suffix.size() && text.ends_with(suffix);
    const char* const end = text.data() + (known ? text.size() - suffix.size() : 0);
    std::int32_t baud = 0;
    const auto result = std::from_chars(text.data(), end, baud);
    if (result.ec != std::errc() || result.ptr != end || baud <= 0)
        throw RuntimeFailure("The port settings \"" + text +
                             "\" are not understood. They look like \"9600,n,8,1\".");
    return baud;
}

} // namespace kavro
