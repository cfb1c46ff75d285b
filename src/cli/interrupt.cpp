#include "cli/interrupt.h"

#include <csignal>

namespace kavro {

namespace {

constexpr std::array<int, 2> WatchedSignals = {SIGINT, SIGTERM};

// A signal handler reaches nothing but what stands outside every object.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void NoteInterrupt(int signal) {
    interrupted = 1;
    std::signal(signal, SIG_DFL); // the second one ends the program
}

} // namespace

InterruptWatch::InterruptWatch(Line& line) : line_(line) {
    interrupted = 0;
    line.Interrupted = [this] { return Interrupted(); };
    for (std::size_t i = 0; i < WatchedSignals.size(); ++i) {
        before_[i] = std::signal(WatchedSignals[i], NoteInterrupt);
        if (before_[i] == SIG_IGN) // started in the background: Ctrl+C is meant for others
            std::signal(WatchedSignals[i], SIG_IGN);
    }
}

InterruptWatch::~InterruptWatch() {
    line_.Interrupted = {};
    for (std::size_t i = 0; i < WatchedSignals.size(); ++i)
        std::signal(WatchedSignals[i], before_[i]);
}

bool InterruptWatch::Interrupted() const {
    return interrupted != 0;
}

void IgnoreClosedPipes() {
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow fails like a full disk
#endif
}

} // namespace kavro
