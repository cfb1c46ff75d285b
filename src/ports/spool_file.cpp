#include "ports/spool_file.h"

#include "link/runtime_failure.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace kavro {

namespace {

// Small pages: each turn writes those that it touches, and a memory card wears out by that.
constexpr SqliteKind SpoolKind = {"spool", SpoolApplication, SpoolVersion, SpoolTables, 1024};
constexpr int BusyMs = 10'000; // only a disk that is very slow makes the other side be longer at it

} // namespace

SpoolConnection::SpoolConnection(const std::string& path, Access access)
    : SqliteFile(SpoolKind, path, access) {
    WaitForOthers(BusyMs);
    WaitForDisk(false);
    Run("PRAGMA wal_autocheckpoint = 0"); // `SpoolFlusher` does that
}

// A file of its own: SQLite has locks on the spool that would go with any other use of it.
SpoolLock::SpoolLock(const std::string& path)
    : file_(open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    if (file_ >= 0 && flock(file_, LOCK_EX | LOCK_NB) == 0)
        return;
    const int error = errno;
    if (file_ >= 0)
        close(file_);
    if (error == EWOULDBLOCK)
        throw RuntimeFailure(
            "The spool " + path +
            " is used by another program. End that program, or give each line a --line or a --spool "
            "of its own.");
    throw RuntimeFailure("The spool " + path +
                         " cannot be locked: " + std::generic_category().message(error) +
                         ". Check its folder and the rights to it, or name another file.");
}

SpoolLock::~SpoolLock() {
    close(file_);
}

} // namespace kavro
