#include "loop/loop_check.h"

#include "link/models.h"
#include "link/text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr std::int64_t RetryUs = 1'000'000;
constexpr std::int64_t PutBackRetryUs = 5'000'000;
constexpr double FarOff = 0.002; // of the range, between what was sent and what is read back
constexpr const char* NotDriven = "outputs were not to be driven";

struct Todo {
    LoopKind Kind;
    const char* Text;
};
constexpr Todo Todos[] = {
    {LoopKind::AnalogInput, "Apply a signal at the field end. When the value is right, press P."},
    {LoopKind::DigitalInput,
     "Press the contact, or switch the signal, at the field end. When it came through, press P."},
    {LoopKind::Counter, "Let pulses come, of a counter that is started. When they are counted, press P."},
    {LoopKind::Frequency, "Apply a frequency at the field end. When the value is right, press P."},
    {LoopKind::AnalogOutput,
     "What does the device in the field show? This: press P. Anything else: N to note it, then F."},
    {LoopKind::DigitalOutput,
     "What does the device in the field do? This: press P. Anything else: N to note it, then F."},
};

// Percent of the range at which an analog output is looked at.
constexpr int Percents[] = {0, 50, 100};

constexpr const char* AnswerWords[] = {"", "The module does not answer. Check its power and the line.",
                                       "The reply of the module cannot be read. Trying again.",
                                       "The module refuses to tell the value of this channel."};

bool SamePlace(const LoopPoint& left, const LoopPoint& right) {
    return left.Address == right.Address && left.Channel == right.Channel && left.Model == right.Model;
}

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

void LoopCheck::Save() const {
    session_->ReplaceFile(plan_.Path, LoopRecordText(plan_.Record));
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
    ShowTodo();
}

void LoopCheck::ShowTodo() {
    if (Over()) {
        view_.Value.clear();
        view_.Notice =
            plan_.Record.Entries.empty() ? "The line file has no channels." : "Every channel is checked.";
        return;
    }
    const LoopPoint& point = Entry().Point;
    for (const Todo& todo : Todos)
        if (todo.Kind == point.Kind)
            view_.Todo = todo.Text;
    if (IsOutput(point.Kind) && !plan_.Drives)
        view_ = {LoopMood::Waiting, "-", "Outputs are not driven in this check.", {}};
}

void LoopCheck::SetNote(const std::string& note) {
    if (Over())
        return;
    plan_.Record.Entries[static_cast<std::size_t>(current_)].Note = note;
    Save();
}

void LoopCheck::Pass() {
    if (Over())
        return;
    if (!begun_ || view_.Mood == LoopMood::Trouble) {
        view_.Notice = "There is no value yet, so this cannot pass. " +
                       std::string(view_.Mood == LoopMood::Trouble ? "F is fail, S is skip." : "");
        return;
    }
    if (!IsOutput(Entry().Point.Kind))
        return Conclude(LoopOutcome::Pass);
    driven_.push_back(lastText_);
    if (level_ + 1 == levels_.size())
        return Conclude(LoopOutcome::Pass);
    ++level_;
    begun_ = false;
    lastText_.clear();
    nextTry_ = 0;
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
    view_.Mood = LoopMood::Trouble;
    view_.Value = "-";
    view_.Notice = text;
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
        return;
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
    view_.Value = reading.Text;
    const auto& seen = watch_.Seen();
    const std::string from = seen[seen.size() > 1 ? seen.size() - 2 : 0].Text;
    switch (watch_.State()) {
    case ChangeState::Waiting:
        view_.Mood = LoopMood::Waiting;
        view_.Notice = "Waiting for a change.";
        break;
    case ChangeState::Moving:
        view_.Mood = LoopMood::Moving;
        view_.Notice = "Changed from " + seen.back().Text +
                       (watch_.Restless() ? ", and has not stood still yet." : ", and still moves.");
        break;
    case ChangeState::Steady:
        view_.Mood = LoopMood::Noticed;
        view_.Notice =
            "Changed from " + from +
            (point.Kind == LoopKind::AnalogInput || point.Kind == LoopKind::Frequency ? ", and steady now."
                                                                                      : ".");
        break;
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
    Save();
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
    view_.Mood = same ? LoopMood::Noticed : LoopMood::Moving;
    view_.Value = shown(level);
    view_.Notice = "Step " + std::to_string(level_ + 1) + " of " + std::to_string(levels_.size()) +
                   ": driven to " + (output.Digital ? level : std::to_string(percent) + " %") +
                   (same ? "." : ", but the module reads back " + shown(*read) + ".");
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

void LoopCheck::PutBackDue(Session& session) {
    if (session.Line.Time().Microseconds() < nextPutBack_)
        return;
    const std::vector<StandingOutput> standing = plan_.Record.Standing;
    for (const StandingOutput& each : standing)
        if ((!InWork(each.Point) || !plan_.Drives) && !PutBack(session, each))
            nextPutBack_ = session.Line.Time().Microseconds() + PutBackRetryUs;
}

bool LoopCheck::PutAllBack(Session& session) {
    const std::vector<StandingOutput> standing = plan_.Record.Standing;
    for (const StandingOutput& each : standing)
        PutBack(session, each);
    return plan_.Record.Standing.empty();
}

std::vector<std::string> LoopCheck::NotPutBack() const {
    std::vector<std::string> texts;
    for (const StandingOutput& each : plan_.Record.Standing)
        if (nextPutBack_ > 0 && !InWork(each.Point))
            texts.push_back(ShortName(each.Point) + " (was " + each.Before + ")");
    return texts;
}

} // namespace kavro
