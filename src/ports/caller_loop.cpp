#include "ports/caller_loop.h"

#include <QObject>

#include <mutex>
#include <utility>

namespace kavro {

struct CallerLoop::Door {
    std::mutex Mutex;
    std::unique_ptr<QObject> Receiver = std::make_unique<QObject>(); // lives in the thread that is called
};

CallerLoop::CallerLoop() : door_(std::make_shared<Door>()) {}

// Without the lock while the receiver goes: nobody else can reach it by then.
CallerLoop::~CallerLoop() {
    std::unique_ptr<QObject> receiver;
    const std::scoped_lock lock(door_->Mutex);
    receiver.swap(door_->Receiver);
}

LoopPost CallerLoop::Post() const {
    return [door = door_](std::function<void()> call) {
        const std::scoped_lock lock(door->Mutex);
        if (door->Receiver)
            QMetaObject::invokeMethod(door->Receiver.get(), std::move(call), Qt::QueuedConnection);
    };
}

} // namespace kavro
