#pragma once

#include <csignal>

#include <sys/resource.h>

namespace kavro {

/// While it lives, no file gets longer than that many bytes, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit room = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &room);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    rlimit before_{};
};

} // namespace kavro
