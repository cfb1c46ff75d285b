#include "map/fast_search.h"

#include "link/baud.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::int16_t RateOrder[] = {3, 6, 4, 5, 7, 2, 1, 0}; // the usual rate, then the quick ones
constexpr std::int16_t InitialisationBaudCode = 3;
constexpr int LongestReply = 16; // characters
constexpr int BitsPerCharacter = 10;
constexpr int LatencyMs = 20; // more than adapters hold characters back
constexpr std::int64_t UsPerMs = 1000;
constexpr int Rounds = 3;            // of asking again
constexpr int LateOnesToWaitFor = 3; // fewer cost less when they are asked again

/// While it lives, transactions end at the latest 3 s after their command, and rates change quickly.
class QuickLine {
public:
    explicit QuickLine(Line& line)
        : line_(line), bounded_(std::exchange(line.Bounded, true)),
          pauseMs_(std::exchange(line.BaudChangePauseMs, FastBaudChangeMs)) {}
    ~QuickLine() {
        line_.Bounded = bounded_;
        line_.BaudChangePauseMs = pauseMs_;
    }
    QuickLine(const QuickLine&) = delete;
    QuickLine& operator=(const QuickLine&) = delete;

private:
    Line& line_;
    bool bounded_;
    int pauseMs_;
};

} // namespace

FastSearch::FastSearch(Session& session, SearchEvents events)
    : session_(session), line_(session.Line), events_(std::move(events)), found_(session),
      forecast_(session.Line.Time()) {}

void FastSearch::Run() {
    const QuickLine quick(line_);
    scope_ = ScopeOf(line_, session_.SearchHighAddress);
    scope_.AnswerWithinMs = answerWithin_ = session_.Preferences.AnswerWithin;
    forecast_.Begin(static_cast<double>(FastSearchMs(scope_)));
    try {
        SearchRates();
    } catch (...) {
        End();
        throw;
    }
    if (!stopRequested_)
        Begin(); // where no baud rate is enabled
    End();
}

void FastSearch::SearchRates() {
    for (const std::int16_t code : RateOrder) {
        if (scope_.BaudEnabled[static_cast<std::size_t>(code)] != 1)
            continue;
        code_ = code;
        events_.Baud(BaudFromCode(code));
        SearchRate(code);
        if (findings_.StoppedAfter)
            return;
    }
}

void FastSearch::SearchRate(std::int16_t code) {
    line_.SetPortBaud(line_.CurrentPort, code, 0, 8, 0); // now, as the questions note when they are sent
    double silentMs = FastBaudChangeMs + FastAddressMs(code, scope_.AnswerWithinMs);
    forecast_.BeginPass(FastBaudChangeMs + scope_.Addresses * FastAddressMs(code, scope_.AnswerWithinMs));
    for (std::int16_t address = 0; address <= session_.SearchHighAddress; ++address) {
        if (stopRequested_) {
            findings_.StoppedAfter = static_cast<std::int16_t>(address - 1);
            findings_.StoppedAtBaud = BaudFromCode(code);
            break;
        }
        events_.Address(address);
        const int before = session_.ModuleCount;
        SearchAddress(address);
        forecast_.Step(silentMs, session_.ModuleCount > before);
        silentMs = FastAddressMs(code, scope_.AnswerWithinMs);
        events_.Yield();
    }
    AwaitLateReplies();
}

void FastSearch::SearchAddress(std::int16_t address) {
    for (const std::int16_t checksum : {std::int16_t{0}, std::int16_t{1}}) {
        const Ask ask{address, checksum, line_.Time().GetTickCount()};
        if (NeedsNoAsking(ask))
            continue;
        asked_.push_back(ask);
        const Heard heard = Put(ask, QuickTimes(ask));
        restless_ = restless_ && heard != Heard::Nothing;
        if (heard == Heard::Trouble)
            Resolve(ask);
        if (checksum == 1)
            events_.Yield();
    }
}

// The module in its initialisation state names an address of its own: its reply must not come so late that it
// could be taken for that of a module with this address.
ReplyTimes FastSearch::QuickTimes(const Ask& ask) const {
    const ReplyTimes full = FullTimes();
    if (ask.Address == 0 && code_ == InitialisationBaudCode)
        return full;
    const std::int64_t first = CommandUs(code_, ask.Checksum) + UsPerMs * answerWithin_;
    return {std::min(first, full.First), full.Next};
}

ReplyTimes FastSearch::FullTimes() const {
    const std::int64_t longest = CommandUs(code_, 1) + UsPerMs * scope_.AnswerWithinMs;
    const ReplyTimes usual = AlwaysMs(line_.ReplyTimeout);
    return {std::max(usual.First, longest) + UsPerMs * LatencyMs, usual.Next};
}

// After a question was sent, until its reply begins; where the adapter echoes, the time runs from the echo's
// end.
std::int64_t FastSearch::LatestMs() const {
    return (CommandUs(code_, 1) + FullTimes().First) / UsPerMs + 1;
}

bool FastSearch::NeedsNoAsking(const Ask& ask) const {
    return found_.Has(ask.Address, code_, ask.Checksum);
}

FastSearch::Heard FastSearch::Put(Ask ask, ReplyTimes times) {
    const std::int64_t strays = line_.StrayCount;
    const auto answer = AskForConfig(line_, ask.Address, ask.Checksum, code_, times);
    Begin();
    const bool stray = line_.StrayCount != strays;
    if (answer && IsCredible(*answer)) {
        NoteLateness(ask);
        const Heard heard = Identify(*answer);
        return stray ? Heard::Trouble : heard;
    }
    return stray || line_.FirstCharacterUs >= 0 ? Heard::Trouble : Heard::Nothing;
}

// Trouble where the module had to be asked again, or cannot be understood.
FastSearch::Heard FastSearch::Identify(const ConfigAnswer& answer) {
    const std::int64_t strays = line_.StrayCount;
    ModuleRecord record;
    Identified identified = IdentifyModule(line_, answer, record, Belief::Strict);
    const bool well = identified == Identified::Fully && line_.StrayCount == strays;
    ConfigAnswer answeredAgain = answer;
    if (!well) {
        ModuleRecord again;
        if (const auto now = AskModuleAgain(line_, answeredAgain, again); TellsMore(now, again, identified)) {
            identified = now;
            record = again;
        }
    }
    if (identified == Identified::No)
        return Heard::Trouble;
    record.Complete = identified == Identified::Fully;
    List(answer, record);
    return well ? Heard::Module : Heard::Trouble;
}

void FastSearch::List(const ConfigAnswer& answer, const ModuleRecord& record) {
    const std::int16_t marked = session_.ScanIndex;
    const int index = found_.Insert(answer, record);
    findings_.ListFull = findings_.ListFull || index < 0;
    if (index < 0)
        return;
    events_.Found(index);
    if (marked >= 0 && index == session_.ScanIndex)
        events_.Changed(marked + (marked >= index ? 1 : 0)); // its mark has gone to the new one
}

// A single slow module costs less when it is asked again than when every address waits for it.
void FastSearch::NoteLateness(const Ask& ask) {
    const std::int64_t beyond = line_.FirstCharacterUs - CommandUs(code_, ask.Checksum);
    const int took = static_cast<int>((beyond + UsPerMs - 1) / UsPerMs);
    if (took <= answerWithin_)
        return;
    slowest_ = std::max(slowest_, took);
    if (++late_ >= LateOnesToWaitFor)
        answerWithin_ = slowest_;
}

// All whose reply may have come during a question that went wrong, or begun to.
std::vector<FastSearch::Ask> FastSearch::Suspects(const Ask& troubled) const {
    const int replyMs = 1000 * BitsPerCharacter * LongestReply / BaudFromCode(code_);
    const std::int64_t since = troubled.SentMs - LatestMs() - replyMs - LatencyMs;
    std::vector<Ask> suspects;
    std::ranges::copy_if(asked_, std::back_inserter(suspects),
                         [&](const Ask& ask) { return ask.SentMs >= since; });
    return suspects;
}

void FastSearch::Resolve(const Ask& troubled) {
    std::vector<Ask> asks = Suspects(troubled);
    const int rounds = restless_ || stopRequested_ ? 1 : Rounds;
    for (int round = 0; round < rounds && !asks.empty(); ++round) {
        AwaitSilence();
        asks = AskAgain(asks, round > 0);
    }
    for (const Ask& ask : asks)
        unclear_.insert(ask.Address);
    asked_.clear(); // all were waited for
}

// Those that are still not clear. `apart`: with silence between any two, as a module may be slower than even
// the full time-out.
std::vector<FastSearch::Ask> FastSearch::AskAgain(const std::vector<Ask>& asks, bool apart) {
    std::vector<Ask> unclear;
    const Ask* silent = nullptr; // the one before, which may have been answered too late even so
    for (const Ask& ask : asks) {
        if (NeedsNoAsking(ask))
            continue;
        if (apart)
            AwaitSilence();
        const Heard heard = Put(ask, FullTimes());
        if (heard == Heard::Trouble) {
            if (silent != nullptr)
                unclear.push_back(*silent);
            unclear.push_back(ask);
            AwaitSilence();
        } else {
            restless_ = false;
        }
        silent = heard == Heard::Nothing && !apart ? &ask : nullptr;
        events_.Yield();
    }
    return unclear;
}

// A line that never falls silent is not waited for each time.
void FastSearch::AwaitSilence() {
    if (!restless_)
        restless_ = !line_.AwaitSilence();
}

// To the last questions at a rate, which nobody could understand at the next one.
void FastSearch::AwaitLateReplies() {
    if (asked_.empty())
        return;
    const Ask last = asked_.back();
    const std::int64_t end = last.SentMs + LatestMs();
    if (line_.StaysSilent(end - line_.Time().GetTickCount()))
        asked_.clear();
    else
        Resolve(last);
}

void FastSearch::Begin() {
    if (std::exchange(begun_, true))
        return;
    found_.Clear();
    events_.Begun();
}

void FastSearch::End() {
    if (!begun_)
        return; // the modules of before are still there
    findings_.Doubles = found_.Doubles();
    for (const std::int16_t address : unclear_)
        if (!found_.HasAny(address))
            findings_.Unclear.push_back(address);
}

} // namespace kavro
