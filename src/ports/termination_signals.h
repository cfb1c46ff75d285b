#pragma once

namespace kavro {

/// While one of these lives, Ctrl+C and the signals that ask a program to end no longer kill it: they make a
/// descriptor readable, so that the program ends in its own time and leaves nothing behind. Make it before
/// the first thread. Signals that the program was started to ignore, as by nohup, stay ignored. A program
/// that writes into a closed pipe is not killed either; its write fails instead.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    /// Readable once the program was asked to end; for poll() only. -1 where the system has no such signals.
    int Descriptor() const { return descriptor_; }

    /// Lets the system end the program after that time, in the middle of whatever blocks it then. 0 takes
    /// that back.
    static void EndWithin(int seconds);

private:
    int descriptor_ = -1;
};

} // namespace kavro
