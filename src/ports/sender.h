#pragma once

#include "monitor/kept_history.h"
#include "ports/destination.h"
#include "ports/limited_thread.h"

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <string>

namespace kavro {

/// Longest time that an orderly end waits for what can still be sent.
inline constexpr std::chrono::milliseconds SenderEndTime{5000};

/// Longest wait for all first tries.
inline constexpr std::chrono::seconds SenderFirstTry{10};

/// Takes from a spool's outlet, on a thread of its own, and hands to a destination, in order. While that is
/// away it is tried again, after 1, 2, 4 to 30 s; what becomes of it is told once for each outage, and once
/// when it is over.
class Sender {
public:
    /// Of a spool that is open. `tell` is called from the sender's thread.
    Sender(std::string spoolPath, std::string outlet, std::unique_ptr<Destination> destination,
           HistoryTeller tell);
    ~Sender();
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;

    /// Begins.
    void Start();

    /// Waits for the first try. Throws `RuntimeFailure` when the destination refuses; then nothing is sent.
    /// One that is away, or late, is told.
    void AwaitFirstTry(std::chrono::steady_clock::time_point until);

    /// There is something in the spool, for whoever fills it; tells when nothing has come of the destination
    /// for 20 s. Never waits for it.
    void Wake();

    /// Asks it to end; may be called from any thread. What waits is sent until `until`, unless the
    /// destination is away.
    void AskToEnd(std::chrono::steady_clock::time_point until);

    /// Waits for the end that it was asked for. A thread that the system holds up for longer than it may be
    /// waited for is left behind.
    void Join();

private:
    friend class SendingThread;
    const std::string name_;
    std::future<void> tried_;
    struct Shared; // also the thread's, which may outlive this object
    std::shared_ptr<Shared> shared_;
    std::optional<LimitedThread> thread_;
};

} // namespace kavro
