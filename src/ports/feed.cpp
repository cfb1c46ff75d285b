#include "ports/feed.h"

#include <utility>

namespace kavro {

namespace {

SpoolChoice WithOutlets(SpoolChoice choice, const std::vector<FeedTarget>& targets) {
    choice.Outlets.clear();
    for (const FeedTarget& target : targets)
        choice.Outlets.push_back(target.Outlet);
    return choice;
}

} // namespace

Feed::Feed(const SpoolChoice& choice, const std::vector<FeedTarget>& targets, const HistoryTeller& tell,
           WallClock wallClock)
    : spool_(WithOutlets(choice, targets), tell, std::move(wallClock)) {
    for (const FeedTarget& target : targets)
        senders_.push_back(
            std::make_unique<Sender>(choice.Path, target.Outlet, target.Make(spool_.Id()), tell));
    for (const auto& sender : senders_)
        sender->Start();
    const auto until = std::chrono::steady_clock::now() + SenderFirstTry;
    for (const auto& sender : senders_)
        sender->AwaitFirstTry(until);
}

Feed::~Feed() {
    const auto until = std::chrono::steady_clock::now() + SenderEndTime;
    for (const auto& sender : senders_)
        sender->AskToEnd(until);
    for (const auto& sender : senders_)
        sender->Join();
}

void Feed::Take(const std::vector<Reading>& readings) {
    spool_.Take(readings);
    if (!readings.empty())
        for (const auto& sender : senders_)
            sender->Wake();
}

} // namespace kavro
