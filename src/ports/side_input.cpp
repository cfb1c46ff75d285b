#include "ports/side_input.h"

#ifdef __linux__
#include <array>
#include <cerrno>

#include <unistd.h>
#endif

namespace kavro {

#ifdef __linux__

void TakeFrom(SideInput& input) {
    std::array<char, 4096> text{};
    const ssize_t length = read(input.Descriptor, text.data(), text.size());
    if (length < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (length <= 0)
        input.Descriptor = -1;
    input.Take({text.data(), length > 0 ? static_cast<std::size_t>(length) : 0});
}

#else

void TakeFrom(SideInput& /*input*/) {}

#endif

} // namespace kavro
