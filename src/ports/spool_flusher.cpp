#include "ports/spool_flusher.h"

#include "ports/spool_file.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kavro {

namespace {

using Steady = std::chrono::steady_clock;

constexpr Steady::duration ShortestRest = std::chrono::seconds(1);
constexpr int RestsPerFlush = 4; // a disk that is slow, or shared by many, has more to do than this
constexpr int FlushesPerCheckpoint = 15;
constexpr qlonglong MostPages = 4096; // of a journal to which turns are added during each checkpoint
constexpr auto Patience = std::chrono::milliseconds(500);

} // namespace

struct SpoolFlusher::Shared {
    explicit Shared(std::string path) : Path(std::move(path)) {}

    const std::string Path;
    std::mutex Mutex;
    std::condition_variable Changed;
    bool Woken = false;
    bool Ending = false;

    // Whether it goes on, after a rest.
    bool Rested(Steady::duration rest) {
        std::unique_lock lock(Mutex);
        return !Changed.wait_for(lock, rest, [this] { return Ending; });
    }

    bool TakeWake() {
        const std::lock_guard lock(Mutex);
        return std::exchange(Woken, false);
    }

    void Wake() {
        const std::lock_guard lock(Mutex);
        Woken = true;
    }
};

namespace {

// Of a SQLite file that other connections hold open: what it reserves is in the file beside it.
class Journal {
public:
    explicit Journal(const std::string& path) : file_(open((path + "-wal").c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Journal() {
        if (file_ >= 0)
            close(file_);
    }
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Without a lock, so that nobody who writes waits.
    bool Flush() const { return file_ >= 0 && fdatasync(file_) == 0; }

private:
    int file_ = -1;
};

// Takes what the journal has into the file, so that the journal begins anew. Only where that never comes to
// an end, as turns are added meanwhile, those who write are held up.
void TakeIn(const SpoolConnection& connection) {
    QSqlQuery state = connection.Ran("PRAGMA wal_checkpoint(PASSIVE)", {});
    if (!NextRow(state))
        return;
    const qlonglong pages = state.value(1).toLongLong(); // all of them since it began anew last
    state.finish();
    if (pages > MostPages)
        connection.Run("PRAGMA wal_checkpoint(RESTART)");
}

} // namespace

// What the thread does.
class FlushingThread {
public:
    explicit FlushingThread(SpoolFlusher::Shared& shared) : shared_(shared) {}

    void Run() {
        Steady::duration took{};
        while (shared_.Rested(std::max(ShortestRest, RestsPerFlush * took))) {
            const auto begin = Steady::now();
            if (shared_.TakeWake())
                Flush();
            took = Steady::now() - begin;
        }
    }

private:
    void Flush() {
        if (!journal_)
            journal_.emplace(shared_.Path);
        if (!journal_->Flush()) {
            journal_.reset();
            shared_.Wake();
        }
        if (++flushes_ < FlushesPerCheckpoint)
            return;
        try {
            if (!connection_)
                connection_.emplace(shared_.Path, SpoolConnection::Access::Write);
            TakeIn(*connection_);
            flushes_ = 0;
        } catch (const std::exception&) { // whoever writes the file tells of its disk
            connection_.reset();
            shared_.Wake();
        }
    }

    SpoolFlusher::Shared& shared_;
    std::optional<Journal> journal_;
    std::optional<SpoolConnection> connection_;
    int flushes_ = FlushesPerCheckpoint; // since the last checkpoint: the first one is due
};

SpoolFlusher::SpoolFlusher(std::string path)
    : shared_(std::make_shared<Shared>(std::move(path))),
      thread_([shared = shared_] { FlushingThread(*shared).Run(); }) {}

SpoolFlusher::~SpoolFlusher() {
    {
        const std::lock_guard lock(shared_->Mutex);
        shared_->Ending = true;
    }
    shared_->Changed.notify_all();
    thread_.EndsWithin(Patience);
}

void SpoolFlusher::Wake() {
    shared_->Wake();
}

} // namespace kavro
