#include "link/messages.h"

#include <exception>

namespace kavro {

bool Guard(Messages& messages, const std::function<void()>& handler) {
    try {
        handler();
        return true;
    } catch (const std::exception& failure) {
        messages.Show(failure.what(), "Error");
        return false;
    }
}

} // namespace kavro
