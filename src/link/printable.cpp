#include "link/printable.h"

#include <algorithm>

namespace kavro {

std::string Printable(std::string_view text) {
    std::string shown(text);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return shown;
}

} // namespace kavro
