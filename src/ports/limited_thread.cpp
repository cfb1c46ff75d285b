#include "ports/limited_thread.h"

#include <atomic>
#include <csignal>
#include <utility>

namespace kavro {

namespace {

// Signals are for the thread that works with the line; a thread has them blocked from its first moment on.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

private:
    sigset_t before_{};
};

// Of the whole program, as its end is.
std::atomic<bool>& LeftBehind() {
    static std::atomic<bool> any = false;
    return any;
}

} // namespace

bool AnyLeftBehind() {
    return LeftBehind();
}

LimitedThread::LimitedThread(std::function<void()> work) {
    std::packaged_task<void()> task(std::move(work));
    ended_ = task.get_future();
    const SignalsBlocked blocked;
    thread_ = std::thread(std::move(task));
}

LimitedThread::~LimitedThread() {
    if (!thread_.joinable())
        return;
    LeftBehind() = true;
    thread_.detach();
}

bool LimitedThread::EndsWithin(std::chrono::milliseconds limit) {
    if (ended_.wait_for(limit) != std::future_status::ready)
        return false;
    if (thread_.joinable())
        thread_.join();
    return true;
}

} // namespace kavro
