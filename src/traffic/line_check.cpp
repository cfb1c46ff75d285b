#include "traffic/line_check.h"

#include "link/baud.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"
#include "map/search_times.h"
#include "traffic/wire_cutter.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <string_view>
#include <utility>

namespace kavro {

namespace {

constexpr int ListenMs = 1000;
constexpr int LongestWaitMs = 5000;   // for others to end
constexpr int LongestBabbleMs = 3000; // a module that babbles may well wait for the next command
constexpr int NapMs = 50;             // the windows wait no longer for a sign of life
constexpr int ShortGuardMs = 10;      // listened between two commands
constexpr int GuardCharacters = 3;
constexpr int LongestFirstGuardMs = 1000;
constexpr int TriesWithPatience = 3; // then a module that never made a sound gets the usual time-out
constexpr int TailMs = 20;           // within which a character too many follows its reply
constexpr std::size_t LongestTail = 2;
constexpr double AnswerMs = 10;      // until a module begins to answer
constexpr double AskCharacters = 20; // of a command and its reply
constexpr double SlowShare = 0.7;    // of the time-out in use
constexpr double BitsPerCharacter = 10;
constexpr double UsPerSecond = 1e6;

// While it lives, the listener is told, rates change quickly, and transactions end after 3 s.
class CheckedLine {
public:
    CheckedLine(Line& line, LineListener& listener)
        : line_(line), careful_(line), pauseMs_(std::exchange(line.BaudChangePauseMs, FastBaudChangeMs)) {
        line.Awaiting = false; // the check waits itself, as it wants to know whose the characters were
        line.Listeners.push_back(&listener);
        listener_ = &listener;
    }
    ~CheckedLine() {
        std::erase(line_.Listeners, listener_);
        line_.BaudChangePauseMs = pauseMs_;
    }
    CheckedLine(const CheckedLine&) = delete;
    CheckedLine& operator=(const CheckedLine&) = delete;

private:
    Line& line_;
    CarefulTransactions careful_;
    int pauseMs_;
    LineListener* listener_ = nullptr;
};

std::vector<ModuleCheck> ModulesOf(const Session& session) {
    std::vector<ModuleCheck> modules;
    for (int index = 0; index < session.ModuleCount; ++index) {
        const ModuleRecord& record = session.ModuleTable[index];
        ModuleCheck module{.Index = index,
                           .Address = record.Address,
                           .Model = Trim(ShownModel(record.Model)),
                           .Baud = BaudFromCode(ModuleBaudCode(session, index)),
                           .Checksum = ModuleChecksum(session, index) == 1};
        for (CheckCommand& command : CheckCommandsOf(session, index))
            module.Tallies.push_back({.Command = std::move(command)});
        modules.push_back(std::move(module));
    }
    return modules;
}

// About what a command takes with its reply; the forecast follows what they really take.
double AskMs(const ModuleCheck& module) {
    return AnswerMs + AskCharacters * BitsPerCharacter * 1000 / module.Baud + ShortGuardMs;
}

// Whether there is a line that a master sends and no module.
bool HoldsCommand(std::string_view characters) {
    constexpr std::size_t LongestCommand = 32;
    for (std::size_t end = 0; (end = characters.find('\r')) != std::string_view::npos;
         characters.remove_prefix(end + 1)) {
        const std::string_view line = characters.substr(0, end);
        if (line.size() <= LongestCommand && IsCommand(line))
            return true;
    }
    return false;
}

} // namespace

LineCheck::LineCheck(Session& session, LineCheckOptions options, LineCheckEvents events)
    : session_(session), line_(session.Line), options_(options), events_(std::move(events)),
      forecast_(session.Line.Time()) {
    result_.Modules = ModulesOf(session);
    result_.Passes = options.Passes;
    result_.ReplyTimeoutMs = line_.ReplyTimeout;
    result_.LongTimeoutMs = std::max(line_.LongReplyTimeout, line_.ReplyTimeout);
    for (const ModuleCheck& module : result_.Modules)
        laterMs_.push_back(AskMs(module));
    BeginForecast();
}

void LineCheck::Run() {
    if (result_.Modules.empty())
        return;
    OpenPort(line_);
    const CheckedLine checked(line_, *this);
    if (Listen())
        AskAll();
    else if (!stopRequested_)
        result_.Busy = true;
    result_.Stopped = stopRequested_;
}

// At the rate of the first module: false when the line does not fall silent.
bool LineCheck::Listen() {
    Enter(CheckStage::Listening);
    line_.SetPortBaud(line_.CurrentPort, ModuleBaudCode(session_, result_.Modules[Order().front()].Index), 0,
                      8, 0);
    bool quiet = true;
    for (int heardMs = 0; heardMs < ListenMs && quiet && !stopRequested_; heardMs += NapMs) {
        if (!line_.StaysSilent(NapMs))
            quiet = Quiet(LongestWaitMs);
        events_.Yield();
    }
    NoteForeign();
    return quiet && !stopRequested_;
}

// Rate by rate, so that each is set once a pass.
std::vector<std::size_t> LineCheck::Order() const {
    std::vector<std::size_t> order(result_.Modules.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [this](std::size_t place) {
        return ModuleBaudCode(session_, result_.Modules[place].Index);
    });
    return order;
}

void LineCheck::AskAll() {
    Enter(CheckStage::Asking);
    const std::vector<std::size_t> order = Order();
    BeginForecast();
    wireUs_ = 0;
    beganAt_ = line_.Time().Microseconds();
    for (int pass = 0; pass < options_.Passes; ++pass, ++result_.PassesMade) {
        for (const std::size_t place : order) {
            if (stopRequested_)
                return;
            const bool on = Ask(result_.Modules[place], pass);
            if (pass == 0) // a silent module soon costs no more than the usual time-out
                laterMs_[place] = std::min<double>(askedMs_, result_.ReplyTimeoutMs) + ShortGuardMs;
            const auto elapsedUs = static_cast<double>(line_.Time().Microseconds() - beganAt_);
            result_.Load = std::min(wireUs_ / std::max(elapsedUs, 1.0), 1.0);
            result_.Echo = line_.Echo;
            forecast_.Step(pass == 0 ? FirstAskMs(result_.Modules[place]) : LaterAskMs(place, pass), false);
            events_.Asked(static_cast<int>(place));
            events_.Yield();
            if (!on && !stopRequested_) {
                result_.Busy = true;
                return;
            }
        }
        if (pass == 0) { // which, as the first step, sets no pace for the later ones
            BeginForecast();
            forecast_.Step(FirstPassMs(), false);
        }
    }
}

double LineCheck::FirstAskMs(const ModuleCheck& module) const {
    return AskMs(module) + static_cast<double>(GuardMs(module, 0));
}

double LineCheck::FirstPassMs() const {
    return std::transform_reduce(result_.Modules.begin(), result_.Modules.end(), 0.0, std::plus<>(),
                                 [this](const ModuleCheck& module) { return FirstAskMs(module); });
}

// In a pass behind the first. For a silent module the line must fall silent, too, before it is given up.
double LineCheck::LaterAskMs(std::size_t place, int pass) const {
    const bool patient = pass < TriesWithPatience && result_.Modules[place].Dead();
    return laterMs_[place] + (patient ? 2 * result_.LongTimeoutMs - result_.ReplyTimeoutMs : 0);
}

void LineCheck::BeginForecast() {
    double ms = FirstPassMs();
    for (int pass = 1; pass < options_.Passes; ++pass)
        for (std::size_t place = 0; place < laterMs_.size(); ++place)
            ms += LaterAskMs(place, pass);
    forecast_.Begin(ms);
}

void LineCheck::Passed(const LineTraffic& traffic) {
    const std::size_t echoed = traffic.Echo ? traffic.Sent.size() : 0;
    const std::size_t characters = traffic.Sent.size() + traffic.Received.size() - echoed;
    wireUs_ += static_cast<double>(characters) * BitsPerCharacter * UsPerSecond / traffic.Baud;
    if (traffic.Outcome == TrafficOutcome::Stray)
        stray_ += traffic.Received;
    else
        traffic_ = traffic;
}

JudgedReply LineCheck::Exchange(const ModuleCheck& module, const CheckCommand& command, int timeoutMs) {
    const std::int64_t beganAt = line_.Time().Microseconds();
    ExchangeWithModule(session_, module.Index, CommandFor(session_, module.Index, command.Lead, command.Tail),
                       timeoutMs);
    askedMs_ = static_cast<double>(line_.Time().Microseconds() - beganAt) / 1000;
    JudgedReply reply =
        JudgeReply(traffic_, module.Checksum, command.Form, MeasureOf(session_, module.Index));
    reply.AsListed =
        reply.Verdict != Verdict::Complete || IsAsListed(session_, module.Index, command, reply.Text);
    return reply;
}

// One command and what comes behind its reply; false when the line does not fall silent.
bool LineCheck::Ask(ModuleCheck& module, int pass) {
    const std::size_t turn = static_cast<std::size_t>(pass) % module.Tallies.size();
    const CheckCommand command = module.Tallies[turn].Command;
    const bool givenUp = module.Dead() && module.Sent >= TriesWithPatience;
    const int timeoutMs = givenUp ? result_.ReplyTimeoutMs : result_.LongTimeoutMs;
    ModuleCheck* const babbler = std::exchange(babbler_, nullptr);
    JudgedReply reply = Exchange(module, command, timeoutMs);
    if (babbler && reply.Verdict == Verdict::Damaged) { // by the end of the babble: it has done its service
        Quiet(LongestBabbleMs);
        stray_ += reply.Text;
        reply = Exchange(module, command, timeoutMs);
    }
    if (babbler)
        babbler->Stray += static_cast<std::int64_t>(std::exchange(stray_, {}).size());
    NoteForeign(); // what had come in front of the command
    if (reply.Verdict == Verdict::Damaged && HoldsCommand(reply.Text + '\r') &&
        !IsReply(module, module.Tallies[turn], command.Form.front() + reply.Text.substr(1) + '\r')) {
        stray_ = reply.Text + '\r'; // another master's, not a reply
        reply = {};
    }
    module.Note(turn, reply);
    NoteTimes(module, reply);
    const CommandTally& tally = module.Tallies[turn];
    if (reply.Verdict == Verdict::Silent && givenUp)
        return StaysSilent(GuardMs(module, pass)) || HearRest(module, tally, true);
    if (reply.Verdict == Verdict::Silent || reply.Verdict == Verdict::Damaged)
        return HearRest(module, tally, reply.Verdict == Verdict::Silent);
    const bool quiet = HearOut(module, tally, pass);
    if (reply.Verdict == Verdict::Complete && tally.Complete == 1)
        if (auto reading = ChannelReading(session_, module.Index, command, reply.Text))
            module.Tallies.push_back({.Command = std::move(*reading)});
    return quiet;
}

void LineCheck::NoteTimes(ModuleCheck& module, const JudgedReply& reply) const {
    if (reply.Verdict != Verdict::Complete)
        return;
    const std::int64_t lastUs = line_.Statistics.LastMicroseconds;
    module.TimesUs.push_back(lastUs);
    const double limitUs = SlowShare * 1000 * result_.ReplyTimeoutMs;
    const auto gaps = static_cast<double>(std::max<std::size_t>(reply.Text.size(), 1));
    const double gapUs = static_cast<double>(lastUs - line_.FirstCharacterUs) / gaps;
    if (static_cast<double>(line_.FirstCharacterUs) > limitUs || gapUs > limitUs)
        ++module.Slow;
}

// In the first pass, and where it happened before, for as long as a second reply may take.
std::int64_t LineCheck::GuardMs(const ModuleCheck& module, int pass) const {
    if (module.Behind > 0 || pass == 0)
        return std::min(result_.LongTimeoutMs, LongestFirstGuardMs);
    return std::max<std::int64_t>(ShortGuardMs, GuardCharacters * 10'000 / module.Baud);
}

// After a good reply: another one behind it is the module's, or a character too many, anything else is
// foreign.
bool LineCheck::HearOut(ModuleCheck& module, const CommandTally& tally, int pass) {
    const std::int64_t begin = line_.Time().GetTickCount();
    if (StaysSilent(GuardMs(module, pass)))
        return true;
    const bool atOnce = line_.Time().GetTickCount() - begin <= TailMs;
    const bool quiet = Quiet(LongestWaitMs);
    const bool second = IsReply(module, tally, stray_);
    if (quiet && (second || (atOnce && stray_.size() <= LongestTail))) {
        module.Stray += static_cast<std::int64_t>(std::exchange(stray_, {}).size());
        module.Behind += second ? 1 : 0;
    }
    NoteForeign();
    return quiet;
}

// After a damaged or missing one: what comes until the line is silent is the module's, but for commands of
// another master and the replies to these.
bool LineCheck::HearRest(ModuleCheck& module, const CommandTally& tally, bool silent) {
    bool quiet = Quiet(LongestBabbleMs);
    if (!quiet && stray_.find('\r') != std::string::npos) { // no babble, but talk
        quiet = Quiet(LongestWaitMs - LongestBabbleMs);
        if (!quiet) {
            NoteForeign();
            return false;
        }
    }
    if (HoldsCommand(stray_))
        NoteForeign();
    else if (silent && IsReply(module, tally, stray_))
        ++module.Late;
    module.Stray += static_cast<std::int64_t>(std::exchange(stray_, {}).size());
    babbler_ = quiet ? nullptr : &module;
    return true;
}

// Waits until the line has been silent for as long as a reply may take; false when it takes longer.
bool LineCheck::Quiet(int milliseconds) {
    const std::int64_t end = line_.Time().GetTickCount() + milliseconds;
    const CheckStage before = stage_;
    Enter(CheckStage::Waiting);
    line_.NoteStray();
    bool quiet = false;
    while (!quiet && line_.Time().GetTickCount() < end && !stopRequested_) {
        if (!line_.FallenSilent())
            line_.StaysSilent(NapMs);
        else if (line_.AwaitSilence() &&
                 StaysSilent(line_.ReplyTimeout > LongestFirstGuardMs ? line_.ReplyTimeout : 0))
            quiet = true;
        else
            line_.NoteStray();
        events_.Yield();
    }
    Enter(before);
    return quiet;
}

// Listens nap by nap, so that the windows live on; true, too, when it is stopped before a character came.
bool LineCheck::StaysSilent(std::int64_t milliseconds) {
    const std::int64_t end = line_.Time().GetTickCount() + milliseconds;
    for (std::int64_t left = milliseconds; left > 0 && !stopRequested_;
         left = end - line_.Time().GetTickCount()) {
        if (!line_.StaysSilent(std::min<std::int64_t>(left, NapMs)))
            return false;
        if (left > NapMs)
            events_.Yield();
    }
    return true;
}

void LineCheck::Enter(CheckStage stage) {
    stage_ = stage;
    events_.Stage(stage);
}

bool LineCheck::IsReply(const ModuleCheck& module, const CommandTally& tally,
                        std::string_view characters) const {
    return HoldsReply(characters, module.Checksum, tally.Command.Form, MeasureOf(session_, module.Index));
}

void LineCheck::NoteForeign() {
    if (stray_.empty())
        return;
    result_.Foreign += static_cast<std::int64_t>(std::exchange(stray_, {}).size());
    ++result_.ForeignBursts;
}

} // namespace kavro
