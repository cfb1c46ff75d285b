#include "calib/calibration_watch.h"

#include "link/codes.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/list_line.h"
#include "map/module_tags.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace kavro {

namespace {

constexpr int RetryMs = 1000;
constexpr int PauseFactor = 4; // a try that takes its time leaves the guide more of it
constexpr int MostPauses = 4;  // in a row, each longer than the one before
constexpr double PercentStep = 0.001;
constexpr const char* LostText = "the port has failed";

std::string UtcNow(Session& session) {
    return UtcToSecond(session.Line.Time().UtcMicroseconds());
}

// A value that was not measured has no source of its own.
std::string SourceOf(const CalibrationPoint& point, bool foundByMeter, bool leftByMeter) {
    if (!point.AsFound && !point.AsLeft)
        return {};
    const bool found = point.AsFound ? foundByMeter : leftByMeter;
    const bool left = point.AsLeft ? leftByMeter : foundByMeter;
    if (found == left)
        return found ? "meter" : "module";
    return found ? "meter / module" : "module / meter";
}

double FinerStep(double step, double other) {
    return step > 0 ? std::min(step, other) : other;
}

std::string FirmwareOf(Session& session, int index) {
    if (session.Ending) // the system leaves the program little time
        return {};
    try {
        return Trim(AskModule(session, index, '$', "F").Data);
    } catch (const RuntimeFailure&) {
        return {}; // the record is kept without
    }
}

} // namespace

std::string StepsText(int trims) {
    return (trims > 0 ? "+" : "") + std::to_string(trims) + (std::abs(trims) == 1 ? " step" : " steps");
}

CalibrationWatch::CalibrationWatch(Session& session, int index, std::function<CalibrationTarget()> target)
    : session_(session), index_(index), target_(std::move(target)), started_(UtcNow(session)) {}

void CalibrationWatch::Begin() {
    points_ = Points();
    rested_.reset();
    recent_.Clear();
    answer_ = Answer::Ok;
    leftDueMs_.reset();
    if (!lost_)
        nextTryMs_ = 0;
}

void CalibrationWatch::Pause(std::int64_t begin) {
    const std::int64_t end = session_.Line.Time().GetTickCount();
    failures_ = std::min(failures_ + 1, MostPauses);
    nextTryMs_ = end + failures_ * std::max<std::int64_t>(RetryMs, PauseFactor * (end - begin));
}

bool CalibrationWatch::Poll() {
    const CalibrationTarget target = target_();
    Clock& clock = session_.Line.Time();
    const std::int64_t begin = clock.GetTickCount();
    if (!On || target.Reading == ReadingOf::Nothing || begin < nextTryMs_)
        return true;
    try {
        const CalibrationReading reading = ReadCalibrated(session_, index_, target.Reading);
        lost_ = false;
        answer_ = reading.Answer;
        recent_.Add(clock.GetTickCount(), reading);
        if (answer_ == Answer::NoReply)
            Pause(begin);
        else
            failures_ = 0;
        if (target.Signal && recent_.Stable(target))
            rested_ = {target, reading};
        if (leftDueMs_ && begin >= *leftDueMs_ && recent_.Last()) {
            CalibrationPoint& point = PointOf(target).Point;
            point.AsLeft = reading.Value;
            point.Step = FinerStep(point.Step, reading.Step);
            leftDueMs_.reset();
        }
    } catch (const RuntimeFailure&) {
        Pause(begin);
        recent_.Clear();
        lost_ = true;
    }
    return !lost_;
}

CalibrationWatch::Kept& CalibrationWatch::PointOf(const CalibrationTarget& target) {
    const auto found =
        std::ranges::find_if(points_, [&](const Kept& kept) { return kept.Point.What == target.What; });
    if (found != points_.end() && found->Point.Adjusted)
        return *found;
    if (target.Signal && !recent_.Last() && !Meter && !rested_)
        Poll();
    Kept kept{.Point = {.What = target.What}};
    if (target.Signal)
        KeepFound(kept, target);
    if (found == points_.end()) {
        points_.push_back(std::move(kept));
        return points_.back();
    }
    if (kept.Point.AsFound)
        *found = std::move(kept);
    else
        found->Outcome = std::move(kept.Outcome);
    found->Point.Adjusted = true;
    return *found;
}

// What was read last, whether it had come to rest or not: the button was pressed now.
void CalibrationWatch::KeepFound(Kept& kept, const CalibrationTarget& target) {
    const CalibrationReading* reading = Meter ? &*Meter : On ? recent_.Last() : nullptr;
    if (!reading && rested_ && rested_->Target.What == target.What)
        reading = &rested_->Reading;
    if (!reading)
        return;
    kept.FoundByMeter = Meter.has_value();
    kept.Point.AsFound = reading->Value;
    kept.Point.Step = reading->Step;
}

// With the present one when it was looked at for long enough, and never changed.
std::vector<CalibrationWatch::Kept> CalibrationWatch::Points() const {
    std::vector<Kept> points = points_;
    if (!rested_)
        return points;
    const auto& [target, reading] = *rested_;
    const auto found = std::ranges::find_if(
        points, [&](const Kept& kept) { return kept.Point.What == rested_->Target.What; });
    if (found != points.end() && found->Point.Adjusted)
        return points;
    Kept& kept = found == points.end() ? points.emplace_back() : *found;
    kept = {.Point = {.What = target.What,
                      .Signal = *target.Signal,
                      .Unit = target.Unit,
                      .AsFound = reading.Value,
                      .Step = reading.Step,
                      .Adjusted = false},
            .Outcome = "not adjusted"};
    return points;
}

void CalibrationWatch::BeforeChange(bool stores) {
    const CalibrationTarget target = target_();
    if (target.What.empty())
        return;
    Kept& kept = PointOf(target);
    CalibrationPoint& point = kept.Point;
    point.Signal = target.Signal.value_or(target.Applied);
    point.Unit = target.Signal ? target.Unit : target.AppliedUnit;
    if (stores) {
        point.AsLeft.reset();
        point.Stored = false;
        kept.Outcome = "broken off";
    }
    Begin();
}

Answer CalibrationWatch::Store(const std::function<Answer()>& ask, int settleMs) {
    const CalibrationTarget target = target_();
    PointOf(target).Point.Stored.reset(); // when the port fails in it, nobody knows
    const Answer answer = ask();
    Kept& kept = PointOf(target);
    CalibrationPoint& point = kept.Point;
    if (answer == Answer::Ok || answer == Answer::Refused)
        point.Stored = answer == Answer::Ok;
    kept.Outcome = answer == Answer::Ok ? "stored" : AnswerText(answer);
    if (!target.Doubt.empty())
        kept.Outcome += ", but " + target.Doubt;
    if (answer == Answer::Ok)
        kept.Trims = 0;
    kept.LeftByMeter = Meter.has_value();
    point.Comparable = target.Signal && (Meter || target.Reading != ReadingOf::Nothing);
    if (!point.Comparable)
        return answer;
    if (Meter) {
        point.AsLeft = Meter->Value;
        point.Step = FinerStep(point.Step, Meter->Step);
    } else {
        leftDueMs_ = session_.Line.Time().GetTickCount() + settleMs;
    }
    return answer;
}

void CalibrationWatch::Trimmed(int steps) {
    PointOf(target_()).Trims += steps;
}

void CalibrationWatch::Drop() {
    const std::string what = target_().What;
    rested_.reset();
    std::erase_if(points_, [&](const Kept& kept) { return kept.Point.What == what; });
}

std::optional<int> CalibrationWatch::LeftIsDue() const {
    if (!On || !leftDueMs_)
        return std::nullopt;
    const std::int64_t left = *leftDueMs_ - session_.Line.Time().GetTickCount();
    return static_cast<int>(std::max<std::int64_t>(left, 0));
}

std::optional<double> CalibrationWatch::Error() const {
    const CalibrationTarget target = target_();
    if (!target.Signal || !Last())
        return std::nullopt;
    return Last()->Value - *target.Signal;
}

// A degree sign for people; files and modules have the letter alone.
std::string CalibrationWatch::ShownUnit(const std::string& unit) const {
    return unit.empty() ? "" : unit == "C" ? " \u00b0C" : " " + unit;
}

std::string CalibrationWatch::ErrorText(double error) const {
    const CalibrationTarget target = target_();
    const CalibrationReading* const last = Last();
    std::string text = ShownInSteps(error, last ? last->Step : PercentStep, true, session_.DecimalSeparator) +
                       ShownUnit(target.Unit);
    if (target.FullScale > 0)
        text += " (" +
                ShownInSteps(error / target.FullScale * 100, PercentStep, true, session_.DecimalSeparator) +
                " % of full scale)";
    return text;
}

ReadingView CalibrationWatch::View() const {
    const CalibrationTarget target = target_();
    ReadingView view;
    if (target.Reading == ReadingOf::Nothing) {
        view.Error = target.Remark;
        view.Faulty = lost_;
        view.State = lost_ ? LostText : "";
        return view;
    }
    view.Faulty = lost_ || answer_ != Answer::Ok;
    view.Stable = recent_.Stable(target);
    if (const CalibrationReading* last = Last())
        view.Reading =
            ShownInSteps(last->Value, last->Step, true, session_.DecimalSeparator) + ShownUnit(target.Unit);
    if (view.Faulty)
        view.State = lost_ ? LostText : AnswerText(answer_);
    else
        view.State = view.Stable ? "stable" : Last() ? "not stable yet" : "not read yet";
    const auto error = Error();
    view.Error = error ? ErrorText(*error) : target.Remark;
    return view;
}

bool CalibrationWatch::AnyStored() const {
    return std::ranges::any_of(points_, [](const Kept& kept) { return kept.Point.Stored == true; });
}

std::string CalibrationWatch::StoredText() const {
    std::string text;
    for (const Kept& kept : Points())
        text += kept.Point.What + ": " + kept.Outcome +
                (kept.Trims == 0 ? ". " : ", trimmed by " + StepsText(kept.Trims) + ". ");
    return text.empty() ? "Nothing was stored. " : text;
}

CalibrationRecord CalibrationWatch::Record() const {
    const ModuleRecord& module = session_.ModuleTable[index_];
    const ModuleTags* const tags = TagsOf(session_, index_);
    CalibrationRecord record{.Address = module.Address,
                             .Model = Trim(ShownModel(module.Model)),
                             .Firmware = FirmwareOf(session_, index_),
                             .Tag = tags ? tags->Module.Tag : "",
                             .Range = Trim(RangeName(module.InputRange)),
                             .Started = started_,
                             .Ended = UtcNow(session_)};
    for (const Kept& kept : Points()) {
        record.Points.push_back(kept.Point);
        record.Points.back().Source = SourceOf(kept.Point, kept.FoundByMeter, kept.LeftByMeter);
    }
    return record;
}

} // namespace kavro
