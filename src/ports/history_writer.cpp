#include "ports/history_writer.h"

#include "link/runtime_failure.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

namespace kavro {

// What both threads see.
struct HistoryWriter::Desk {
    Desk(const std::string& path, const WriterLimits& limits) : Path(path), Limits(limits) {}

    const std::string Path;
    const WriterLimits Limits;

    std::mutex Mutex;
    std::condition_variable Changed;
    std::deque<Reading> Waiting;
    std::size_t InWork = 0; // handed to the store, which is not through with them
    std::size_t Lost = 0;   // since the thread looked last
    std::int64_t LostFromMs = 0;
    bool Closing = false;
    std::deque<std::string> Told; // not delivered yet

    // Whether the first readings are lost now.
    bool Put(const std::vector<Reading>& readings) {
        const std::scoped_lock lock(Mutex);
        Waiting.insert(Waiting.end(), readings.begin(), readings.end());
        if (Waiting.size() <= Limits.Waiting)
            return false;
        const bool first = Lost == 0;
        if (first)
            LostFromMs = Waiting.front().Time.UnixMs;
        const std::size_t over = Waiting.size() - Limits.Waiting;
        Waiting.erase(Waiting.begin(), Waiting.begin() + static_cast<std::ptrdiff_t>(over));
        Lost += over;
        return first;
    }

    // What waits; nothing of it when it is time to try again; nothing at all at the end.
    std::optional<std::vector<Reading>> Await() {
        std::unique_lock lock(Mutex);
        InWork = 0;
        Changed.wait_for(lock, Limits.TryAgain, [this] { return Closing || !Waiting.empty(); });
        if (Closing && Waiting.empty())
            return std::nullopt;
        InWork = Waiting.size();
        std::deque<Reading> taken = std::exchange(Waiting, {});
        lock.unlock(); // whoever brings more must not wait for the rest
        return std::vector<Reading>(std::make_move_iterator(taken.begin()),
                                    std::make_move_iterator(taken.end()));
    }

    void Miss(const HistoryStore& store) {
        std::unique_lock lock(Mutex);
        const std::int64_t from = LostFromMs;
        const std::size_t lost = std::exchange(Lost, 0);
        lock.unlock();
        if (lost > 0)
            store.Miss(from, static_cast<std::int64_t>(lost));
    }

    void Close() {
        {
            const std::scoped_lock lock(Mutex);
            Closing = true;
        }
        Changed.notify_one();
    }

    std::size_t Unstored() {
        const std::scoped_lock lock(Mutex);
        return Waiting.size() + InWork + Lost;
    }

    void Tell(const std::string& text) {
        const std::scoped_lock lock(Mutex);
        Told.push_back(text);
    }

    std::optional<std::string> NextTold() {
        const std::scoped_lock lock(Mutex);
        if (Told.empty())
            return std::nullopt;
        std::string text = std::move(Told.front());
        Told.pop_front();
        return text;
    }

    // The thread's work.
    void Store(const HistoryStore& store) {
        while (const std::optional<std::vector<Reading>> readings = Await()) {
            Miss(store);
            if (readings->empty())
                store.TryAgain();
            else
                store.Take(*readings);
        }
    }
};

// Whatever the thread uses is its own or on the desk, as it may be left behind; this object is touched in its
// own thread alone, by what is posted there.
HistoryWriter::HistoryWriter(const std::string& path, HistoryStoreMaker make, HistoryTeller tell,
                             const WriterLimits& limits)
    : desk_(std::make_shared<Desk>(path, limits)), tell_(std::move(tell)),
      tellLater_([this, desk = desk_, post = loop_.Post()](const std::string& text) {
          desk->Tell(text);
          post([this] { Deliver(); });
      }) {
    const auto opened = std::make_shared<std::promise<std::exception_ptr>>();
    thread_ = std::make_unique<LimitedThread>(
        [desk = desk_, tellLater = tellLater_, make = std::move(make), opened] {
            HistoryStore store;
            try {
                store = make(tellLater);
            } catch (...) {
                opened->set_value(std::current_exception());
                return;
            }
            opened->set_value(nullptr);
            desk->Store(store);
        });
    std::future<std::exception_ptr> failure = opened->get_future();
    if (failure.wait_for(limits.Opening) != std::future_status::ready) {
        desk_->Close();
        throw RuntimeFailure("The history " + path +
                             " cannot be opened: its disk does not answer. Choose another file.");
    }
    if (const std::exception_ptr thrown = failure.get()) {
        thread_->EndsWithin(limits.Closing);
        std::rethrow_exception(thrown);
    }
}

HistoryWriter::~HistoryWriter() {
    desk_->Close();
    if (!thread_->EndsWithin(desk_->Limits.Closing))
        desk_->Tell("The disk of the history " + desk_->Path + " does not answer. " +
                    std::to_string(desk_->Unstored()) + " readings may be lost.");
    while (const std::optional<std::string> text = desk_->NextTold())
        tell_(*text);
}

void HistoryWriter::Take(const std::vector<Reading>& readings) {
    if (desk_->Put(readings))
        tellLater_("The disk of the history " + desk_->Path +
                   " does not answer. The oldest of the readings that wait for it are lost.");
    desk_->Changed.notify_one();
}

// One text for each that was posted; the last thing that is done here, as `tell` may be the end of this
// object.
void HistoryWriter::Deliver() {
    const std::optional<std::string> text = desk_->NextTold();
    const HistoryTeller tell = tell_;
    if (text)
        tell(*text);
}

} // namespace kavro
