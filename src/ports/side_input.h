#pragma once

#include <functional>
#include <string_view>

namespace kavro {

/// Text that a server takes from elsewhere while it serves, such as standard input.
struct SideInput {
    int Descriptor = -1;                             ///< a negative one is ignored
    std::function<void(std::string_view text)> Take; ///< given what came; an empty text, once, at the end
};

/// Hands over what `input`, which must be readable, has now. At its end, and where it cannot be read, its
/// descriptor becomes -1.
void TakeFrom(SideInput& input);

} // namespace kavro
