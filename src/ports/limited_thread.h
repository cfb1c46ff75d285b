#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <thread>

namespace kavro {

/// A thread, without signals, that is waited for within a limit. One that hangs, on a disk that does not
/// answer, cannot be broken off: it is left behind and ends by itself. So whatever it uses must be its own or
/// shared.
class LimitedThread {
public:
    explicit LimitedThread(std::function<void()> work);

    /// Leaves a thread behind that was not waited for.
    ~LimitedThread();
    LimitedThread(const LimitedThread&) = delete;
    LimitedThread& operator=(const LimitedThread&) = delete;

    /// Waits until it has ended; false when it has not within the limit.
    bool EndsWithin(std::chrono::milliseconds limit);

private:
    std::future<void> ended_;
    std::thread thread_;
};

/// Whether a thread was left behind. A program must end by `std::_Exit` then, as it may still use what the
/// end of a program destroys.
bool AnyLeftBehind();

} // namespace kavro
