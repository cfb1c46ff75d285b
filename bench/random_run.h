#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include <unistd.h>

// Sanitizers end the program by an abort, so that where it stood can be told.
extern "C" inline const char* __asan_default_options() {
    return "abort_on_error=1:handle_abort=0";
}
extern "C" inline const char* __ubsan_default_options() {
    return "abort_on_error=1:print_stacktrace=1";
}

namespace kavro {

/// Random numbers that are the same on every machine.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : random_(seed) {}

    /// 0 to `below` - 1.
    std::size_t Below(std::size_t below) { return static_cast<std::size_t>(random_() % below); }
    bool Chance(double share) { return static_cast<double>(random_() % 1'000'000) < share * 1e6; }
    /// One of the items of an array or a container, which must have one.
    template <class Items>
    auto& Of(Items& items) {
        return items[Below(std::size(items))];
    }

private:
    std::mt19937_64 random_;
};

/// A long run of random steps. When the program ends abnormally, or a step takes too long, it says how to
/// repeat it. One at a time.
class RandomRun {
public:
    /// The arguments of the program are the seed, the seconds, and the step to begin with.
    RandomRun(const char* name, int argc, char** argv, int longestStepSeconds)
        : seed_(argc > 1 ? std::strtoull(argv[1], nullptr, 10) : 1),
          seconds_(argc > 2 ? std::atoi(argv[2]) : 10),
          step_(argc > 3 ? std::strtoull(argv[3], nullptr, 10) : 0), first_(step_),
          longest_(longestStepSeconds), name_(name) {
        running_ = this;
        for (const int signal : {SIGABRT, SIGSEGV, SIGFPE, SIGILL})
            if (signal == SIGABRT || !Sanitized)
                std::signal(signal, [](int number) {
                    running_.load()->Tell("ended abnormally");
                    std::signal(number, SIG_DFL);
                    std::raise(number);
                });
        watchdog_ = std::thread([this] { Watch(); });
    }
    ~RandomRun() {
        ended_ = true;
        watchdog_.join();
    }
    RandomRun(const RandomRun&) = delete;
    RandomRun& operator=(const RandomRun&) = delete;

    /// Whether a step depends on the seed and its number alone, so that it can be repeated without those
    /// before it.
    bool StepsAlone = true;

    std::uint64_t Seed() const { return seed_; }
    std::uint64_t Step() const { return step_; }
    std::uint64_t Steps() const { return step_ - first_; }

    /// Begins the next step; false when the time is over.
    bool Next() {
        ++step_;
        begun_ = Now();
        return begun_ - start_ < seconds_ * 1000;
    }

    /// What the step is doing, for the report.
    void Note(const std::string& what) { std::snprintf(noted_, sizeof noted_, "%s", what.c_str()); }

    /// A finding that is no crash: says it and ends the program.
    [[noreturn]] void Fail(const std::string& what) {
        Note(what);
        std::abort();
    }

private:
#ifdef __SANITIZE_ADDRESS__
    static constexpr bool Sanitized = true; // its own report of a bad address is better
#else
    static constexpr bool Sanitized = false;
#endif

    static std::int64_t Now() {
        using namespace std::chrono;
        return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    }

    void Watch() {
        while (!ended_) {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            if (!ended_ && Now() - begun_ > longest_ * 1000) {
                Tell("does not come back");
                std::_Exit(3);
            }
        }
    }

    void Tell(const char* what) {
        dprintf(STDERR_FILENO, "%s: %s at step %llu: %s\n  repeat with: %s %llu %d %llu\n", name_, what,
                static_cast<unsigned long long>(step_), noted_, name_, static_cast<unsigned long long>(seed_),
                seconds_, static_cast<unsigned long long>(RepeatFrom()));
    }

    std::uint64_t RepeatFrom() const {
        return StepsAlone ? step_ - 1 : first_;
    }

    inline static std::atomic<RandomRun*> running_ = nullptr;
    const std::uint64_t seed_;
    const int seconds_;
    std::atomic<std::uint64_t> step_;
    const std::uint64_t first_;
    const std::int64_t longest_;
    const char* name_;
    const std::int64_t start_ = Now();
    std::atomic<std::int64_t> begun_ = start_;
    std::atomic<bool> ended_ = false;
    char noted_[2048] = "";
    std::thread watchdog_;
};

} // namespace kavro
