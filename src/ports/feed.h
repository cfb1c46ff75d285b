#pragma once

#include "ports/sender.h"
#include "ports/spool.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace kavro {

/// A destination by the name of its outlet.
struct FeedTarget {
    std::string Outlet; ///< "database", "broker"
    /// Makes the destination for the spool that has been opened.
    std::function<std::unique_ptr<Destination>(const std::string& spoolId)> Make;
};

/// A spool and a sender for each destination: readings that are taken go to all of them.
class Feed : public ReadingSink {
public:
    /// Opens the spool, whose outlets those of the targets are, and starts the senders. `tell` is called from
    /// any thread. Throws `RuntimeFailure` when the spool cannot be used or a destination refuses.
    Feed(const SpoolChoice& choice, const std::vector<FeedTarget>& targets, const HistoryTeller& tell,
         WallClock wallClock = SystemTime);

    /// Sends what it can in `SenderEndTime`; the rest stays in the spool.
    ~Feed() override;

    void Take(const std::vector<Reading>& readings) override;

private:
    Spool spool_;
    std::vector<std::unique_ptr<Sender>> senders_;
};

} // namespace kavro
