#include "loop/loop_check.h"

#include "link/models.h"
#include "link/text.h"
#include "loop/loop_words.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

namespace kavro {

namespace {

constexpr std::int64_t RetryUs = 1'000'000;
constexpr std::int64_t PutBackRetryUs = 5'000'000;
constexpr std::int64_t RefusalUs = 3'000'000; // that a refused key is told
constexpr double FarOff = 0.002;              // of the range, between what was sent and what is read back
constexpr const char* NotDriven = "outputs were not to be driven";

// Percent of the range at which an analog output is looked at.
constexpr int Percents[] = {0, 50, 100};

constexpr const char* AnswerWords[] = {"", "The module does not answer. Check its power and the line.",
                                       "The reply of the module cannot be read. Trying again.",
                                       "The module refuses to tell the value of this channel."};

std::string RefusedDrive(const LoopPoint& point) {
    const bool hasAlarm = RowOfModel(point.Model).Kind == ModelKind::AlarmInput;
    return std::string("The module did not accept the command.") +
           (hasAlarm ? " While its alarm is enabled, that drives its outputs." : "");
}

} // namespace

LoopCheck::LoopCheck(Session& session, LoopPlan plan)
    : session_(&session), plan_(std::move(plan)), module_(session, plan_.File) {
    for (LoopEntry& entry : plan_.Record.Entries) {
        if (!IsOutput(entry.Point.Kind))
            continue;
        const bool skipped = entry.Result && entry.Result->Values == std::vector<std::string>{NotDriven};
        if (plan_.Drives && skipped)
            entry.Result.reset();
        else if (!plan_.Drives && !entry.Result)
            entry.Result = {LoopOutcome::Skip, plan_.Now(), plan_.Person, {NotDriven}};
    }
    Save();
    current_ = -1;
    GoOn();
}

void LoopCheck::Save() {
    session_->ReplaceFile(plan_.Path, LoopRecordText(plan_.Record));
    forgotten_ = false;
}

// To the next entry without a result behind this one, else to the first one.
void LoopCheck::GoOn() {
    const auto& entries = plan_.Record.Entries;
    const int count = static_cast<int>(entries.size());
    for (int step = 1; step <= count; ++step) {
        const int next = (current_ + step) % count;
        if (!entries[static_cast<std::size_t>(next)].Result)
            return GoTo(next);
    }
    GoTo(count);
}

void LoopCheck::GoTo(int entry) {
    current_ = std::clamp(entry, 0, static_cast<int>(plan_.Record.Entries.size()));
    begun_ = false;
    view_ = {};
    watch_ = ChangeWatch();
    levels_.clear();
    driven_.clear();
    lastText_.clear();
    level_ = 0;
    nextTry_ = 0;
    nextPutBack_ = 0;
    refusedUntil_ = 0;
    ShowTodo();
}

void LoopCheck::ShowTodo() {
    if (Over()) {
        view_.Value.clear();
        view_.Notice =
            plan_.Record.Entries.empty() ? "The line file has no channels." : "Every channel is checked.";
        return;
    }
    const bool waits = !IsOutput(Entry().Point.Kind) || plan_.Drives;
    Tell(LoopMood::Waiting, "-", waits ? "" : "Outputs are not driven in this check.");
}

// A key that was refused is told for a while, whatever is seen meanwhile.
void LoopCheck::Tell(LoopMood mood, const std::string& value, const std::string& notice) {
    const LoopKind kind = Entry().Point.Kind;
    const char* todo = mood == LoopMood::Trouble         ? TroubleTodo
                       : IsOutput(kind) && !plan_.Drives ? "S is skip, F is fail."
                                                         : LoopTodo(kind);
    const bool refused = session_->Line.Time().Microseconds() < refusedUntil_;
    view_ = {mood, value, refused ? view_.Notice : notice, todo};
}

void LoopCheck::SetNote(const std::string& note) {
    if (Over())
        return;
    std::string& kept = plan_.Record.Entries[static_cast<std::size_t>(current_)].Note;
    const std::string before = std::exchange(kept, note);
    try {
        Save();
    } catch (const RuntimeFailure&) {
        kept = before;
        throw;
    }
}

void LoopCheck::Pass() {
    if (Over())
        return;
    if (!begun_ || view_.Mood == LoopMood::Trouble) {
        view_.Notice = "P came before there was a value, so it did not count.";
        refusedUntil_ = session_->Line.Time().Microseconds() + RefusalUs;
        return;
    }
    if (!IsOutput(Entry().Point.Kind))
        return Conclude(LoopOutcome::Pass);
    if (level_ + 1 == levels_.size())
        return Conclude(LoopOutcome::Pass);
    driven_.push_back(lastText_);
    ++level_;
    begun_ = false;
    lastText_.clear();
    nextTry_ = 0;
    refusedUntil_ = 0;
}

void LoopCheck::Conclude(LoopOutcome outcome) {
    if (Over())
        return;
    LoopEntry& entry = plan_.Record.Entries[static_cast<std::size_t>(current_)];
    const auto before = entry.Result;
    entry.Result = {outcome, plan_.Now(), plan_.Person, Values()};
    try {
        Save();
    } catch (const RuntimeFailure&) {
        entry.Result = before;
        throw;
    }
    GoOn();
}

std::vector<std::string> LoopCheck::Values() const {
    if (IsOutput(Entry().Point.Kind)) {
        std::vector<std::string> values = driven_;
        if (!lastText_.empty() && level_ == values.size())
            values.push_back(lastText_);
        return values;
    }
    std::vector<std::string> values;
    const auto& seen = watch_.Seen();
    const bool counts = Entry().Point.Kind == LoopKind::Counter;
    for (std::size_t i = 0; i < seen.size(); ++i)
        if (!counts || i == 0 || i + 1 == seen.size()) // what lies between are numbers counted through
            values.push_back(seen[i].Text);
    if (watch_.State() == ChangeState::Moving)
        values.push_back(lastText_ + " (moving)");
    else if (values.size() == 1)
        values.emplace_back("no change noticed");
    return values;
}

void LoopCheck::Trouble(const std::string& text) {
    Tell(LoopMood::Trouble, "-", text);
    nextTry_ = session_->Line.Time().Microseconds() + RetryUs;
}

void LoopCheck::Lost(const std::string& why) {
    if (Over())
        return;
    Trouble(why + " Trying again.");
    nextTry_ = 0;
}

bool LoopCheck::InWork(const LoopPoint& point) const {
    return !Over() && SamePlace(Entry().Point, point);
}

void LoopCheck::Step(Session& session) {
    PutBackDue(session);
    if (Over() || session.Line.Time().Microseconds() < nextTry_)
        return;
    const LoopPoint& point = Entry().Point;
    if (IsOutput(point.Kind) && !plan_.Drives)
        return ShowTodo();
    if (const std::string why = module_.Enter(session, point); !why.empty())
        return Trouble(why);
    IsOutput(point.Kind) ? StepOutput(session) : StepInput(session);
    module_.Leave(session);
}

void LoopCheck::StepInput(Session& session) {
    const LoopPoint& point = Entry().Point;
    const LoopReading reading = ReadLoopInput(session, 0, point);
    if (reading.Answer != Answer::Ok) {
        if (reading.Answer == Answer::NoReply)
            module_.Forget();
        return Trouble(AnswerWords[static_cast<std::size_t>(reading.Answer)] +
                       std::string(point.Disabled ? " The line file has it switched off." : ""));
    }
    if (reading.Open)
        return Trouble("The module says that nothing is connected: open.");
    if (!begun_)
        watch_ = ChangeWatch(LoopFullScale(session.ModuleTable[0], point.Kind, reading.Number));
    begun_ = true;
    lastText_ = reading.Text;
    watch_.Take(session.Line.Time().Microseconds(), {reading.Number, reading.Text});
    TellInput(point.Kind);
}

void LoopCheck::TellInput(LoopKind kind) {
    const auto& seen = watch_.Seen();
    const std::string from = seen[seen.size() > 1 ? seen.size() - 2 : 0].Text;
    const bool level = kind != LoopKind::AnalogInput && kind != LoopKind::Frequency;
    switch (watch_.State()) {
    case ChangeState::Waiting:
        return Tell(LoopMood::Waiting, lastText_, "Waiting for a change.");
    case ChangeState::Moving:
        return Tell(LoopMood::Moving, lastText_,
                    "Changed from " + seen.back().Text +
                        (watch_.Restless() ? ", and has not stood still yet." : ", and still moves."));
    case ChangeState::Steady:
        return Tell(LoopMood::Noticed, lastText_,
                    "Changed from " + from + (level ? "." : ", and steady now."));
    }
}

const StandingOutput* LoopCheck::StandingOf(const LoopPoint& point) const {
    for (const StandingOutput& each : plan_.Record.Standing)
        if (SamePlace(each.Point, point))
            return &each;
    return nullptr;
}

void LoopCheck::StepOutput(Session& session) {
    const NamedOutput* const output = module_.OutputOf(session, Entry().Point);
    if (!output) {
        module_.Forget();
        return Trouble("The module does not tell that this channel is an output, so it is not driven.");
    }
    if (levels_.empty() && output->Digital)
        levels_ = {"off", "on"};
    else if (levels_.empty())
        for (const int percent : Percents)
            levels_.push_back(FormatNumber(output->Low + (output->High - output->Low) * percent / 100, 1, 3));
    unit_ = output->Unit;
    if (begun_ || Drive(session, *output))
        ReadBack(session, *output);
}

void LoopCheck::KeepStanding(const StandingOutput& standing) {
    plan_.Record.Standing.push_back(standing);
    try {
        Save();
    } catch (const RuntimeFailure&) {
        plan_.Record.Standing.pop_back();
        throw;
    }
}

void LoopCheck::Forget(const LoopPoint& point) {
    std::erase_if(plan_.Record.Standing, [&](const auto& each) { return SamePlace(each.Point, point); });
    forgotten_ = true;
}

// What stands there is on the disk before it is driven.
bool LoopCheck::Drive(Session& session, const NamedOutput& output) {
    const LoopPoint& point = Entry().Point;
    if (!StandingOf(point)) {
        const auto before = output.Read();
        if (!before) {
            module_.Forget();
            Trouble(
                "The module does not tell what stands at this output, so it is not driven: it could not be "
                "put back.");
            return false;
        }
        KeepStanding({point, *before});
    }
    if (!output.Plan(levels_[level_])()) {
        const bool refused = session.Line.ReplyIs('?');
        if (refused && level_ == 0)
            Forget(point); // it still stands as it stood
        if (!refused)
            module_.Forget();
        Trouble(refused ? RefusedDrive(point) : AnswerWords[1]);
        return false;
    }
    begun_ = true;
    return true;
}

void LoopCheck::ReadBack(Session& session, const NamedOutput& output) {
    const std::string& level = levels_[level_];
    const auto read = output.Read();
    if (!read) {
        module_.Forget();
        return Trouble(
            "It was driven, and does not answer any more. Check the power of the module and the line.");
    }
    const double far = std::abs(NumericValue(*read) - NumericValue(level));
    const bool same = output.Digital ? *read == level : far <= FarOff * (output.High - output.Low);
    const auto shown = [&](const std::string& text) {
        return Trim(ShownNumber(text, session.DecimalSeparator) + " " + unit_);
    };
    lastText_ = shown(level) + (same ? "" : " (reads back " + shown(*read) + ")");
    const int percent = output.Digital ? 0 : Percents[level_];
    Tell(same ? LoopMood::Noticed : LoopMood::Moving, shown(level),
         "Step " + std::to_string(level_ + 1) + " of " + std::to_string(levels_.size()) + ": driven to " +
             (output.Digital ? level : std::to_string(percent) + " %") +
             (same ? "." : ", but the module reads back " + shown(*read) + "."));
}

// True when it stands as before; then nothing is kept of it any more.
bool LoopCheck::PutBack(Session& session, const StandingOutput& standing) {
    if (!module_.Enter(session, standing.Point).empty())
        return false;
    const NamedOutput* const output = module_.OutputOf(session, standing.Point);
    const bool done = output && output->Plan(standing.Before)();
    if (!done) {
        module_.Forget();
        return false;
    }
    module_.Leave(session);
    Forget(standing.Point);
    return true;
}

// Each of them, and then what is kept, whatever fails; the first failure is thrown on behind the last one.
// What cannot be saved does no harm: the next check puts it back once more.
bool LoopCheck::PutBackEach(Session& session, const std::vector<StandingOutput>& standing) {
    std::exception_ptr failure;
    const auto done = [&](const std::function<bool()>& work) {
        try {
            return work();
        } catch (const Interruption&) {
            throw;
        } catch (const RuntimeFailure&) {
            failure = failure ? failure : std::current_exception();
            return false;
        }
    };
    bool all = true;
    for (const StandingOutput& each : standing)
        all = done([&] { return PutBack(session, each); }) && all;
    if (forgotten_)
        all = done([&] { return Save(), true; }) && all;
    if (!all)
        nextPutBack_ = session.Line.Time().Microseconds() + PutBackRetryUs;
    if (failure)
        std::rethrow_exception(failure);
    return all;
}

void LoopCheck::PutBackDue(Session& session) {
    if (session.Line.Time().Microseconds() < nextPutBack_)
        return;
    std::vector<StandingOutput> due = plan_.Record.Standing;
    std::erase_if(due, [&](const auto& each) { return InWork(each.Point) && plan_.Drives; });
    PutBackEach(session, due);
}

bool LoopCheck::PutAllBack(Session& session) {
    const std::vector<StandingOutput> standing = plan_.Record.Standing;
    return PutBackEach(session, standing);
}

std::vector<std::string> LoopCheck::NotPutBack() const {
    std::vector<std::string> texts;
    for (const StandingOutput& each : plan_.Record.Standing)
        if (nextPutBack_ > 0 && !InWork(each.Point))
            texts.push_back(StandingText(each));
    return texts;
}

} // namespace kavro
