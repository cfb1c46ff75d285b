#pragma once

#include "ports/limited_thread.h"

#include <memory>
#include <string>

namespace kavro {

/// Brings what is committed to a spool to its disk, once a second or at a fifth of the time where the disk is
/// slow, on a thread of its own, so that neither the line nor a destination waits for a memory card; and its
/// journal into the file, about every 15 s. What fails is tried again.
class SpoolFlusher {
public:
    /// Of a file that is there.
    explicit SpoolFlusher(std::string path);

    /// Leaves the thread behind when the disk holds it up.
    ~SpoolFlusher();
    SpoolFlusher(const SpoolFlusher&) = delete;
    SpoolFlusher& operator=(const SpoolFlusher&) = delete;

    /// There is something new in the file. Never waits for the disk.
    void Wake();

private:
    friend class FlushingThread;
    struct Shared; // also the thread's, which may outlive this object
    std::shared_ptr<Shared> shared_;
    LimitedThread thread_;
};

} // namespace kavro
