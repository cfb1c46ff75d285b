#include "ports/sender.h"

#include "link/runtime_failure.h"
#include "ports/spool_outlet.h"

#include <algorithm>
#include <condition_variable>
#include <future>
#include <mutex>
#include <utility>

namespace kavro {

namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::seconds;

constexpr seconds FirstTry{10};    // waited for at the start
constexpr seconds Lateness{1};     // of a thread that was asked to end, before it is left behind
constexpr seconds IdleEvery{10};   // between two looks at a destination that gets nothing
constexpr seconds LongestRest{30}; // between two tries

} // namespace

struct Sender::Shared {
    std::string SpoolPath, Outlet;
    std::unique_ptr<kavro::Destination> Destination; // the thread's alone
    HistoryTeller Teller;
    std::promise<void> Tried; // of the first try: a failure when it was refused

    std::mutex Mutex;
    std::condition_variable Changed;
    bool Woken = true; // at the start something may wait
    bool Ending = false;
    bool LeftBehind = false;  // nobody is there to be told anything
    Steady::time_point Until; // when it is ending

    void Tell(const std::string& text) {
        const std::lock_guard lock(Mutex);
        if (!LeftBehind)
            Teller(text);
    }
};

// What the thread does.
class SendingThread {
public:
    using Shared = Sender::Shared;
    explicit SendingThread(Shared& shared) : shared_(shared), destination_(*shared.Destination) {}

    void Run() {
        if (!Begin())
            return;
        while (!Leaves()) {
            try {
                Turn();
            } catch (const DestinationRefused& failure) {
                Failed(failure.what(), true);
            } catch (const SqlFailure& failure) { // of the spool
                Failed(std::string("the spool cannot be read: ") + failure.what(), false);
            } catch (const std::exception& failure) {
                Failed(failure.what(), false);
            }
        }
        destination_.Close();
    }

private:
    // False when it cannot begin.
    bool Begin() {
        try {
            outlet_.emplace(shared_.SpoolPath, shared_.Outlet);
            Connect();
        } catch (const DestinationAway& failure) {
            Failed(failure.what(), false);
        } catch (const DestinationRefused& failure) {
            return GiveUp(destination_.Name() + " refuses: " + failure.what() + ".");
        } catch (const std::exception& failure) {
            return GiveUp(failure.what());
        }
        shared_.Tried.set_value();
        return true;
    }

    bool GiveUp(const std::string& reason) {
        shared_.Tried.set_exception(std::make_exception_ptr(RuntimeFailure(reason)));
        return false;
    }

    void Connect() {
        const auto has = destination_.Connect();
        connected_ = true;
        if (has)
            outlet_->Done(*has);
    }

    void Turn() {
        if (!connected_) {
            if (!Rest(rest_))
                return;
            Connect();
        }
        TakeWake();
        const std::vector<SpoolRow> rows = outlet_->Next(destination_.Most());
        const std::int64_t sent = rows.empty() ? 0 : destination_.Send(rows);
        if (!rows.empty())
            outlet_->Done(sent);
        if (const std::vector<SpoolGap> gaps = outlet_->Gaps(); !gaps.empty()) {
            destination_.SendGaps(gaps, outlet_->Lost());
            outlet_->GapsDone(gaps);
        }
        Succeeded();
        waits_ = rows.size() >= destination_.Most() || (!rows.empty() && sent < rows.back().Id);
        if (waits_)
            return;
        if (!AwaitWake())
            destination_.Idle();
        else
            Rest(std::chrono::milliseconds(destination_.GatherMs()));
    }

    void Succeeded() {
        rest_ = seconds(1);
        refusalTold_ = false;
        if (std::exchange(outage_, false))
            shared_.Tell(destination_.Name() + " is there again, and gets what waited.");
    }

    void Failed(const std::string& reason, bool refused) {
        destination_.Close();
        rest_ = outage_ ? std::min(2 * rest_, LongestRest) : seconds(1);
        connected_ = false;
        if (!outage_ || (refused && !refusalTold_))
            shared_.Tell(destination_.Name() + (refused ? " refuses: " : " cannot be reached: ") + reason +
                         ". The readings wait in the spool meanwhile.");
        outage_ = true;
        refusalTold_ = refusalTold_ || refused;
    }

    // What waits is sent while there is time, but a destination that is away is not waited for.
    bool Leaves() {
        const std::lock_guard lock(shared_.Mutex);
        return shared_.Ending &&
               (!connected_ || !(waits_ || shared_.Woken) || Steady::now() >= shared_.Until);
    }

    void TakeWake() {
        const std::lock_guard lock(shared_.Mutex);
        shared_.Woken = false;
    }

    // False when nobody woke it for a while.
    bool AwaitWake() {
        std::unique_lock lock(shared_.Mutex);
        return shared_.Changed.wait_for(lock, IdleEvery, [&] { return shared_.Woken || shared_.Ending; });
    }

    // False when it was cut off by the end.
    bool Rest(std::chrono::milliseconds time) {
        std::unique_lock lock(shared_.Mutex);
        return !shared_.Changed.wait_for(lock, time, [&] { return shared_.Ending; });
    }

    Shared& shared_;
    Destination& destination_;
    std::optional<SpoolOutlet> outlet_;
    bool connected_ = false;
    bool waits_ = false;       // there is more
    bool outage_ = false;      // told
    bool refusalTold_ = false; // in this outage
    seconds rest_{1};
};

Sender::Sender(std::string spoolPath, std::string outlet, std::unique_ptr<Destination> destination,
               HistoryTeller tell)
    : shared_(std::make_shared<Shared>()) {
    shared_->SpoolPath = std::move(spoolPath);
    shared_->Outlet = std::move(outlet);
    shared_->Destination = std::move(destination);
    shared_->Teller = std::move(tell);
}

Sender::~Sender() {
    AskToEnd(Steady::now());
    Join();
}

void Sender::Start() {
    std::future<void> tried = shared_->Tried.get_future();
    const std::string name = shared_->Destination->Name();
    thread_.emplace([shared = shared_] {
        SendingThread(*shared).Run();
        shared->Destination.reset();
    });
    if (tried.wait_for(FirstTry) == std::future_status::ready)
        tried.get();
    else
        shared_->Tell(name + " has not answered yet. The readings wait in the spool meanwhile.");
}

void Sender::Wake() {
    const std::lock_guard lock(shared_->Mutex);
    if (std::exchange(shared_->Woken, true))
        return;
    shared_->Changed.notify_all();
}

void Sender::AskToEnd(Steady::time_point until) {
    const std::lock_guard lock(shared_->Mutex);
    if (!std::exchange(shared_->Ending, true))
        shared_->Until = until;
    shared_->Changed.notify_all();
}

void Sender::Join() {
    if (!thread_)
        return;
    const auto left = shared_->Until + Lateness - Steady::now();
    const bool ended = thread_->EndsWithin(std::chrono::ceil<std::chrono::milliseconds>(left));
    const std::lock_guard lock(shared_->Mutex);
    shared_->LeftBehind = !ended;
}

} // namespace kavro
