#include "ports/termination_signals.h"

#ifdef __linux__
#include <csignal>
#include <initializer_list>

#include <sys/signalfd.h>
#include <unistd.h>
#endif

namespace kavro {

#ifdef __linux__

namespace {

// But those that the program was started to ignore, as by nohup.
sigset_t EndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction present {};
        sigaction(signal, nullptr, &present);
        if (present.sa_handler != SIG_IGN)
            sigaddset(&signals, signal);
    }
    return signals;
}

} // namespace

TerminationSignals::TerminationSignals() {
    const sigset_t signals = EndingSignals();
    std::signal(SIGPIPE, SIG_IGN);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

TerminationSignals::~TerminationSignals() {
    // A signal that has been heeded must not strike once it is no longer held back.
    signalfd_siginfo heeded{};
    while (read(descriptor_, &heeded, sizeof heeded) == static_cast<ssize_t>(sizeof heeded)) {
    }
    close(descriptor_);
    const sigset_t signals = EndingSignals();
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

void TerminationSignals::EndWithin(int seconds) {
    alarm(static_cast<unsigned>(seconds));
}

#else

TerminationSignals::TerminationSignals() = default;
TerminationSignals::~TerminationSignals() = default;
void TerminationSignals::EndWithin(int) {}

#endif

} // namespace kavro
