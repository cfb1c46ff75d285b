#include "ports/limited_thread.h"

#include <utility>

namespace kavro {

LimitedThread::LimitedThread(std::function<void()> work) {
    std::packaged_task<void()> task(std::move(work));
    ended_ = task.get_future();
    thread_ = std::thread(std::move(task));
}

LimitedThread::~LimitedThread() {
    if (thread_.joinable())
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
