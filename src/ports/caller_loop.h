#pragma once

#include <functional>
#include <memory>

namespace kavro {

/// Hands a function to a thread's event loop, from whichever thread; it is dropped when nobody waits for it.
using LoopPost = std::function<void(std::function<void()> call)>;

/// Lets other threads call into the event loop of the thread that made it, for as long as it lives.
class CallerLoop {
public:
    CallerLoop();
    ~CallerLoop();
    CallerLoop(const CallerLoop&) = delete;
    CallerLoop& operator=(const CallerLoop&) = delete;

    /// What other threads are handed. It may outlive this object: what it is given then is dropped, and so is
    /// what was still waiting for its turn.
    LoopPost Post() const;

private:
    struct Door;
    std::shared_ptr<Door> door_;
};

} // namespace kavro
