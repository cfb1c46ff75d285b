#pragma once

#include "monitor/kept_history.h"
#include "ports/caller_loop.h"
#include "ports/limited_thread.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kavro {

/// What a writer stores readings with; made, called and destroyed in the writer's thread. Throws nothing.
struct HistoryStore {
    std::function<void(const std::vector<Reading>& readings)> Take;
    std::function<void(std::int64_t fromMs, std::int64_t lost)> Miss; ///< readings from then on are lost
    std::function<void()> TryAgain; ///< called about once a second while nothing comes
};

/// Makes one; `tell` is for that thread. Throws when it cannot.
using HistoryStoreMaker = std::function<HistoryStore(const HistoryTeller& tell)>;

/// What a writer puts up with.
struct WriterLimits {
    std::size_t Waiting = 100'000; ///< readings that wait for the disk; beyond that the oldest are lost
    std::chrono::milliseconds Opening{5000};
    std::chrono::milliseconds Closing{4000};
    std::chrono::milliseconds TryAgain{1000};
};

/// Stores readings in a thread of its own, so that nobody waits for the disk. Used in the thread that made it
/// alone: what is told comes from that thread's event loop, and what is left to be told from the destructor.
class HistoryWriter {
public:
    /// Waits until the store was made. Throws what making it threw, and `RuntimeFailure` when that takes too
    /// long. `path` is what messages call the file.
    HistoryWriter(const std::string& path, HistoryStoreMaker make, HistoryTeller tell,
                  const WriterLimits& limits = {});

    /// Waits until what was taken is stored, within the limit.
    ~HistoryWriter();
    HistoryWriter(const HistoryWriter&) = delete;
    HistoryWriter& operator=(const HistoryWriter&) = delete;

    /// Puts readings behind those that wait; never waits for the disk.
    void Take(const std::vector<Reading>& readings);

private:
    struct Desk;

    void Deliver();

    std::shared_ptr<Desk> desk_;
    HistoryTeller tell_;
    CallerLoop loop_;
    HistoryTeller tellLater_;               // from either thread
    std::unique_ptr<LimitedThread> thread_; // ends before the loop that it calls into
};

} // namespace kavro
