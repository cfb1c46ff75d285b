#include "cli/polling.h"

#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "diag/line_recovery.h"
#include "link/runtime_failure.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr int LongestIntervalMs = 86'400'000; // a day
constexpr std::int64_t NapUs = 50'000;        // Ctrl+C is noticed within that time

// Waits until `moment`; false when Ctrl+C came before.
bool WaitUntil(Clock& clock, std::int64_t moment, const InterruptWatch& watch) {
    while (!watch.Interrupted()) {
        const std::int64_t now = clock.Microseconds();
        if (now >= moment)
            return true;
        clock.SleepUntil(std::min(moment, now + NapUs));
    }
    return false;
}

// The first moment of the schedule after `due` that is not past yet.
std::int64_t NextMoment(std::int64_t due, std::int64_t interval, std::int64_t now) {
    const std::int64_t next = due + interval;
    return interval == 0 || next >= now ? next : next + (now - next + interval - 1) / interval * interval;
}

class Poller {
public:
    Poller(Line& line, const Pace& pace, const PollWork& work) : line_(line), pace_(pace), work_(work) {}

    PollEnd Run() {
        Clock& clock = line_.Time();
        std::int64_t due = clock.Microseconds();
        bool on = true;
        while (on && turns_ != pace_.Turns && WaitUntil(clock, due, watch_)) {
            on = Turn();
            due = NextMoment(due, std::int64_t{1000} * pace_.IntervalMs, clock.Microseconds());
        }
        if (recovery_.Lost())
            return PollEnd::PortLost;
        return on && pace_.Turns && turns_ != pace_.Turns ? PollEnd::Interrupted : PollEnd::Done;
    }

private:
    // False when nothing more is to be done.
    bool Turn() {
        if (!recovery_.Ready() || !Read())
            return true;
        recovery_.Succeeded();
        ++turns_;
        return work_.Print();
    }

    bool Read() {
        try {
            return recovery_.Attempt(work_.Read);
        } catch (const Interruption&) {
            return false; // noticed before the next turn
        } catch (const RuntimeFailure& failure) {
            if (pace_.Turns == 1)
                throw;
            PrintNote(std::string(failure.what()) + " Going on as soon as the port can be opened again.");
            return false;
        }
    }

    static void TellRecovery(bool lost) {
        if (!lost)
            PrintNote("The port is there again.");
    }

    Line& line_;
    const Pace& pace_;
    const PollWork& work_;
    const InterruptWatch watch_{line_};
    LineRecovery recovery_{line_, TellRecovery};
    int turns_ = 0;
};

} // namespace

Pace ReadPace(const QCommandLineParser& parser, int fallbackMs) {
    Pace pace{.IntervalMs = fallbackMs};
    if (parser.isSet("interval"))
        pace.IntervalMs = ParseWholeNumber(parser.value("interval").toStdString(),
                                           "an interval in milliseconds", 0, LongestIntervalMs);
    if (parser.isSet("count"))
        pace.Turns = ParseWholeNumber(parser.value("count").toStdString(), "a count", 1, INT32_MAX);
    return pace;
}

PollEnd Poll(Line& line, const Pace& pace, const PollWork& work) {
    return Poller(line, pace, work).Run();
}

} // namespace kavro
