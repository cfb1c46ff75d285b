#include "ports/sender.h"

#include "link/runtime_failure.h"
#include "ports/spool_outlet.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <utility>

namespace kavro {

namespace {

using Steady = std::chrono::steady_clock;
using std::chrono::seconds;

constexpr seconds Lateness{1};   // of a thread that was asked to end, before it is left behind
constexpr seconds IdleEvery{10}; // between two looks at a destination that gets nothing
constexpr Steady::duration ShortestRest = seconds(1), LongestRest = seconds(30); // between two tries
constexpr seconds LateAfter{20}; // nothing has come of what a destination is at
constexpr seconds OldEnough{10}; // a connection that ends sooner is no sign that all is well

constexpr const char* Refuses = " refuses: ";
constexpr const char* NotReached = " cannot be reached: ";

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
    Steady::time_point Until;               // when it is ending
    std::optional<Steady::time_point> Busy; // since when the destination has been at it
    bool Late = false;                      // told
    bool NotAwaited = false;                // the first try took too long; told

    std::atomic<bool> LeftBehind = false; // nobody is there to be told anything
    std::mutex Telling;                   // its own: whoever is told may take its time

    void Tell(const std::string& text) {
        const std::lock_guard lock(Telling);
        if (!LeftBehind)
            Teller(text);
    }

    // Whether the destination is late, and that was not told yet.
    bool TakeLate() {
        const bool late = Busy && !Late && Steady::now() - *Busy > LateAfter;
        Late = Late || late;
        return late;
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
                Failed(destination_.Name() + Refuses + failure.what(), true);
            } catch (const SqlFailure& failure) {
                Failed("The spool " + shared_.SpoolPath + " cannot be read: " + failure.what(), false);
            } catch (const std::exception& failure) {
                Failed(destination_.Name() + NotReached + failure.what(), false);
            }
        }
        destination_.Close();
        TellRest();
    }

private:
    // While the destination is at something.
    class Busy {
    public:
        explicit Busy(Shared& shared) : shared_(shared) { Set(Steady::now()); }
        ~Busy() { Set(std::nullopt); }
        Busy(const Busy&) = delete;
        Busy& operator=(const Busy&) = delete;

    private:
        void Set(std::optional<Steady::time_point> since) {
            const std::lock_guard lock(shared_.Mutex);
            shared_.Busy = since;
        }

        Shared& shared_;
    };

    template <typename Work>
    auto At(const Work& work) {
        const Busy busy(shared_);
        return work();
    }

    // False when it cannot begin.
    bool Begin() {
        try {
            Connect();
        } catch (const DestinationAway& failure) {
            Failed(destination_.Name() + NotReached + failure.what(), false);
        } catch (const DestinationRefused& failure) {
            const std::string what = destination_.Name() + Refuses + failure.what();
            if (GivesUp(what + "."))
                return false;
            Failed(what, true);
        } catch (const std::exception& failure) {
            if (GivesUp(failure.what()))
                return false;
            Failed(failure.what(), false);
        }
        shared_.Tried.set_value();
        return true;
    }

    void TellRest() {
        try {
            if (const auto rest = outlet_ ? outlet_->Waiting() : 0; rest > 0)
                shared_.Tell(destination_.Name() + " has not got all: " + std::to_string(rest) +
                             (rest == 1 ? " reading waits" : " readings wait") +
                             " in the spool for the next start.");
        } catch (const SqlFailure&) { // told before
        }
    }

    // Whether the start still waits for the first try, which is told then.
    bool GivesUp(const std::string& reason) {
        const std::lock_guard lock(shared_.Mutex);
        if (shared_.NotAwaited)
            return false;
        shared_.Tried.set_exception(std::make_exception_ptr(RuntimeFailure(reason)));
        return true;
    }

    void Connect() {
        if (!outlet_)
            outlet_.emplace(shared_.SpoolPath, shared_.Outlet);
        const auto lost = outlet_->Lost();
        const auto has = At([&] { return destination_.Connect(lost); });
        connected_ = true;
        since_ = Steady::now();
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
        const std::int64_t sent = rows.empty() ? 0 : At([&] { return destination_.Send(rows); });
        if (!rows.empty())
            outlet_->Done(sent);
        if (const std::vector<SpoolGap> gaps = outlet_->Gaps(); !gaps.empty()) {
            const auto lost = outlet_->Lost();
            At([&] { destination_.SendGaps(gaps, lost); });
            outlet_->GapsDone(gaps);
        }
        Succeeded();
        waits_ = rows.size() >= destination_.Most() || (!rows.empty() && sent < rows.back().Id);
        if (waits_)
            return;
        if (!AwaitWake())
            At([&] { destination_.Idle(); });
        else
            Rest(std::chrono::milliseconds(destination_.GatherMs()));
    }

    void Succeeded() {
        refusalTold_ = false;
        const bool late = TakeToldLate();
        if (std::exchange(outage_, false) || late)
            shared_.Tell(destination_.Name() + " is there again, and gets what waited.");
    }

    void Failed(const std::string& what, bool refused) {
        destination_.Close();
        const bool lived = connected_ && Steady::now() - since_ >= OldEnough;
        rest_ = lived ? ShortestRest : std::min(2 * rest_, LongestRest);
        connected_ = false;
        if (!outage_ || (refused && !refusalTold_))
            shared_.Tell(what + ". The readings wait in the spool meanwhile.");
        outage_ = true;
        refusalTold_ = refusalTold_ || refused;
    }

    // What waits is sent while there is time, but a destination that is away is not waited for.
    bool Leaves() {
        const std::lock_guard lock(shared_.Mutex);
        return shared_.Ending &&
               (!connected_ || !(waits_ || shared_.Woken) || Steady::now() >= shared_.Until);
    }

    bool TakeToldLate() {
        const std::lock_guard lock(shared_.Mutex);
        return std::exchange(shared_.Late, false);
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
    bool Rest(Steady::duration time) {
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
    Steady::time_point since_; // it is connected
    Steady::duration rest_ = ShortestRest / 2;
};

Sender::Sender(std::string spoolPath, std::string outlet, std::unique_ptr<Destination> destination,
               HistoryTeller tell)
    : name_(destination->Name()), shared_(std::make_shared<Shared>()) {
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
    tried_ = shared_->Tried.get_future();
    thread_.emplace([shared = shared_] {
        SendingThread(*shared).Run();
        shared->Destination.reset();
    });
}

void Sender::AwaitFirstTry(Steady::time_point until) {
    bool ready = tried_.wait_until(until) == std::future_status::ready;
    if (!ready) {
        const std::lock_guard lock(shared_->Mutex);
        ready = tried_.wait_for(seconds(0)) == std::future_status::ready;
        shared_->NotAwaited = shared_->Late = !ready;
    }
    if (ready)
        tried_.get();
    else
        shared_->Tell(name_ + " has not answered yet. The readings wait in the spool meanwhile.");
}

void Sender::Wake() {
    bool late = false;
    {
        const std::lock_guard lock(shared_->Mutex);
        late = shared_->TakeLate();
        if (!std::exchange(shared_->Woken, true))
            shared_->Changed.notify_all();
    }
    if (late)
        shared_->Tell(name_ + " does not answer. The readings wait in the spool meanwhile.");
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
    if (thread_->EndsWithin(std::chrono::ceil<std::chrono::milliseconds>(left)))
        return;
    shared_->Tell(name_ + " does not answer. What it has not got waits in the spool for the next start.");
    shared_->LeftBehind = true;
}

} // namespace kavro
