#include "ports/write_through.h"

#include <cerrno>

#include <unistd.h>

namespace kavro {

// By POSIX, as the streams of C++ cannot wait for the disk.
bool WriteAll(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO; // never without a reason
        if (written <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool WriteThrough(int file, std::string_view text) {
    return WriteAll(file, text) && WaitForDisk(file);
}

bool WaitForDisk(int file) {
    // What is no file on a disk (a terminal, for one) has nothing to wait for and says EINVAL.
    return fsync(file) == 0 || errno == EINVAL;
}

} // namespace kavro
