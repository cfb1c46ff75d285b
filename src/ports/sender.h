#pragma once

#include "monitor/kept_history.h"
#include "ports/destination.h"
#include "ports/limited_thread.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace kavro {

/// Longest time that an orderly end waits for what can still be sent.
inline constexpr std::chrono::milliseconds SenderEndTime{5000};

/// Takes from a spool's outlet, on a thread of its own, and hands to a destination, in order. While that is
/// away it is tried again, after 1, 2, 4 and then every 30 s; what becomes of it is told once for each
/// outage, and once when it is over.
class Sender {
public:
    /// Of a spool that is open. `tell` is called from the sender's thread.
    Sender(std::string spoolPath, std::string outlet, std::unique_ptr<Destination> destination,
           HistoryTeller tell);
    ~Sender();
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    /// Begins, and waits for the first try, for 10 s at most: throws `RuntimeFailure`, and sends nothing,
    /// when the destination refuses. One that is away is told.
    void Start();

    /// There is something in the spool. May be called from any thread; never waits.
    void Wake();

    /// Asks it to end; may be called from any thread. What waits is sent until `until`, unless the
    /// destination is away.
    void AskToEnd(std::chrono::steady_clock::time_point until);

    /// Waits for the end that it was asked for. A thread that the system holds up for longer than it may be
    /// waited for is left behind.
    void Join();

private:
    friend class SendingThread;
    struct Shared; // also the thread's, which may outlive this object
    std::shared_ptr<Shared> shared_;
    std::optional<LimitedThread> thread_;
};

} // namespace kavro
