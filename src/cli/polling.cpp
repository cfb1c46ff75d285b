#include "cli/polling.h"

#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "diag/line_recovery.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr int LongestIntervalMs = 86'400'000; // a day
constexpr int LongestPatienceS = 86'400;
constexpr std::int64_t OutageUs = 500'000;
constexpr std::int64_t NapUs = 50'000;      // Ctrl+C is noticed within that time
constexpr std::int64_t LongestIdleMs = 500; // so that a lost port is noticed while nothing is due
constexpr std::int64_t Never = INT64_MAX;

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
    Poller(Line& line, const Pace& pace, const PollWork& work)
        : line_(line), pace_(pace), work_(work), patienceMs_(pace.GiveUpMs) {
        if (pace.Turns == 1 && !work.EndsRound && !patienceMs_)
            patienceMs_ = 0;
    }

    PollEnd Run() {
        Clock& clock = line_.Time();
        std::int64_t due = clock.Microseconds();
        bool on = true;
        while (on && turns_ != pace_.Turns && WaitUntil(clock, std::min(due, givingUp_), watch_)) {
            on = Turn() && !GivenUp(); // before giving up the port is tried once more, whatever is due
            if (const std::int64_t now = clock.Microseconds(); now >= due)
                due = idleMs_ > 0 ? now + 1000 * idleMs_
                                  : std::max(NextMoment(due, std::int64_t{1000} * pace_.IntervalMs, now),
                                             Rested(now));
        }
        if (recovery_.Lost())
            return PollEnd::PortLost;
        return on && pace_.Turns && turns_ != pace_.Turns ? PollEnd::Interrupted : PollEnd::Done;
    }

private:
    // While the port is away, turns without a pause must neither keep the processor busy nor fill a log.
    std::int64_t Rested(std::int64_t now) const {
        return recovery_.Lost() ? now + (pace_.IntervalMs == 0 ? OutageUs : NapUs) : now;
    }

    // False when nothing more is to be done.
    bool Turn() {
        idleMs_ = 0;
        if (!recovery_.Ready() || !Read())
            return !recovery_.Lost() || !work_.PrintLost || work_.PrintLost();
        recovery_.Succeeded();
        if (work_.IdleMs && (idleMs_ = std::min(work_.IdleMs(), LongestIdleMs)) > 0)
            return true;
        if (!work_.EndsRound || work_.EndsRound())
            ++turns_;
        return work_.Print();
    }

    bool Read() {
        try {
            return recovery_.Attempt(work_.Read);
        } catch (const Interruption&) {
            return false; // noticed before the next turn
        } catch (const RuntimeFailure& failure) {
            if (patienceMs_ == 0)
                throw;
            PrintNote(std::string(failure.what()) + " Going on as soon as the port can be opened again.");
            return false;
        }
    }

    void NoteOutage(bool lost) {
        if (!lost)
            PrintNote("The port is there again.");
        givingUp_ =
            lost && patienceMs_ ? line_.Time().Microseconds() + std::int64_t{1000} * *patienceMs_ : Never;
    }

    bool GivenUp() const {
        if (line_.Time().Microseconds() < givingUp_)
            return false;
        PrintNote("The port stayed away for " + std::to_string(*patienceMs_ / 1000) + " s. Given up.");
        return true;
    }

    Line& line_;
    const Pace& pace_;
    const PollWork& work_;
    const InterruptWatch watch_{line_};
    LineRecovery recovery_{line_, [this](bool lost) { NoteOutage(lost); }};
    std::optional<int> patienceMs_;
    std::int64_t givingUp_ = Never; // moment of the clock
    int turns_ = 0;
    std::int64_t idleMs_ = 0; // as nothing was due
};

} // namespace

void AddGiveUpOption(QCommandLineParser& parser) {
    parser.addOption(
        {"give-up",
         "Give up when a port that has failed stays away for SECONDS; without it a single turn gives "
         "up at once, several never do.",
         "SECONDS"});
}

Pace ReadPace(const QCommandLineParser& parser, int fallbackMs) {
    Pace pace{.IntervalMs = fallbackMs};
    if (parser.isSet("interval"))
        pace.IntervalMs = ParseWholeNumber(parser.value("interval").toStdString(),
                                           "an interval in milliseconds", 0, LongestIntervalMs);
    if (parser.isSet("count"))
        pace.Turns = ParseWholeNumber(parser.value("count").toStdString(), "a count", 1, INT32_MAX);
    if (parser.isSet("give-up"))
        pace.GiveUpMs = 1000 * ParseWholeNumber(parser.value("give-up").toStdString(), "a time in seconds", 0,
                                                LongestPatienceS);
    return pace;
}

PollEnd Poll(Line& line, const Pace& pace, const PollWork& work) {
    return Poller(line, pace, work).Run();
}

} // namespace kavro
