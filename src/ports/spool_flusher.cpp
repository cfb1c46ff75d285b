#include "ports/spool_flusher.h"

#include "ports/spool_file.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <utility>

namespace kavro {

namespace {

using Steady = std::chrono::steady_clock;

constexpr Steady::duration ShortestRest = std::chrono::seconds(1);
constexpr int RestsPerFlush = 4; // a disk that is slow, or shared by many, has more to do than this
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

    void Work() {
        std::optional<SpoolConnection> connection;
        Steady::duration took{};
        while (Rested(std::max(ShortestRest, RestsPerFlush * took))) {
            const auto begin = Steady::now();
            if (TakeWake())
                Flush(connection);
            took = Steady::now() - begin;
        }
    }

    void Flush(std::optional<SpoolConnection>& connection) {
        try {
            if (!connection)
                connection.emplace(Path, SpoolConnection::Access::Write);
            connection->Run("PRAGMA wal_checkpoint(PASSIVE)");
        } catch (const std::exception&) { // whoever writes the file tells of its disk
            connection.reset();
            Wake();
        }
    }

    void Wake() {
        const std::lock_guard lock(Mutex);
        Woken = true;
    }
};

SpoolFlusher::SpoolFlusher(std::string path)
    : shared_(std::make_shared<Shared>(std::move(path))), thread_([shared = shared_] { shared->Work(); }) {}

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
