#pragma once

#include "terminal/test_folder.h"

#include <csignal>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>

namespace kavro {

/// A folder on a disk that can be filled: a small file system of its own where the test may mount one, else
/// no file of the test may grow while it is full.
class FullDisk : public TestFolder {
public:
    explicit FullDisk(const char* size = "size=64k") {
        mounted_ = mount("kavro-disk", Path().c_str(), "tmpfs", 0, size) == 0;
    }

    ~FullDisk() {
        MakeRoom();
        if (mounted_)
            umount2(Path().c_str(), MNT_DETACH);
    }

    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    /// How many files and folders it holds.
    std::ptrdiff_t Entries() const { return TestFolder::Entries() - (filler_ ? 1 : 0); }

    void Fill() {
        if (!mounted_) {
            Limit(0);
            return;
        }
        const std::string block(1024, 'x');
        const int file = open(Path("filler").c_str(), O_WRONLY | O_CREAT, 0600);
        while (write(file, block.data(), block.size()) > 0) {
        }
        close(file);
        filler_ = true;
    }

    void MakeRoom() {
        if (!mounted_)
            Limit(RLIM_INFINITY);
        std::filesystem::remove(Path("filler"));
        filler_ = false;
    }

    /// What the system says of it.
    const char* Reason() const { return mounted_ ? "No space left on device" : "File too large"; }

    /// No file of the test gets longer than that.
    static void Limit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limits = {bytes, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &limits);
    }

private:
    bool mounted_ = false;
    bool filler_ = false;
};

} // namespace kavro
