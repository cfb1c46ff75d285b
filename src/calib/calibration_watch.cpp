#include "calib/calibration_watch.h"

#include "link/codes.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/list_line.h"
#include "map/module_tags.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int RetryMs = 1000;
constexpr int PauseFactor = 4; // a try that takes its time leaves the guide more of it
constexpr double PercentStep = 0.001;

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
    return found ? "as found: meter, as left: module" : "as found: module, as left: meter";
}

std::string FirmwareOf(Session& session, int index) {
    try {
        return Trim(AskModule(session, index, '$', "F").Data);
    } catch (const RuntimeFailure&) {
        return {}; // the record is kept without
    }
}

} // namespace

CalibrationWatch::CalibrationWatch(Session& session, int index, std::function<CalibrationTarget()> target)
    : session_(session), index_(index), target_(std::move(target)), started_(UtcNow(session)) {}

void CalibrationWatch::Begin() {
    recent_.Clear();
    answer_ = Answer::Ok;
    leftDueMs_.reset();
}

bool CalibrationWatch::Poll() {
    const CalibrationTarget target = target_();
    Clock& clock = session_.Line.Time();
    const std::int64_t begin = clock.GetTickCount();
    if (!On || target.Reading == ReadingOf::Nothing || (lost_ && begin < nextTryMs_))
        return true;
    try {
        const CalibrationReading reading = ReadCalibrated(session_, index_, target.Reading);
        lost_ = false;
        answer_ = reading.Answer;
        recent_.Add(clock.GetTickCount(), reading);
        if (leftDueMs_ && begin >= *leftDueMs_ && recent_.Last())
            KeepLeft(target);
    } catch (const RuntimeFailure&) {
        const std::int64_t end = clock.GetTickCount();
        nextTryMs_ = end + std::max<std::int64_t>(RetryMs, PauseFactor * (end - begin));
        recent_.Clear();
        lost_ = true;
    }
    return !lost_;
}

CalibrationWatch::Kept& CalibrationWatch::PointOf(const CalibrationTarget& target) {
    const auto found =
        std::ranges::find_if(points_, [&](const Kept& kept) { return kept.Point.What == target.What; });
    if (found != points_.end())
        return *found;
    points_.push_back({{.What = target.What}});
    Kept& kept = points_.back();
    if (!target.Signal)
        return kept;
    if (!recent_.Last() && !Meter)
        Poll();
    kept.FoundByMeter = Meter.has_value();
    kept.Point.AsFound = Meter;
    if (!Meter && On && recent_.Last())
        kept.Point.AsFound = recent_.Last()->Value;
    return kept;
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

void CalibrationWatch::AfterStore(Answer answer, int settleMs) {
    const CalibrationTarget target = target_();
    Kept& kept = PointOf(target);
    kept.Point.Stored = answer == Answer::Ok;
    kept.Outcome = kept.Point.Stored ? "stored" : AnswerText(answer);
    kept.LeftByMeter = Meter.has_value();
    if (Meter)
        kept.Point.AsLeft = Meter;
    else if (target.Signal)
        leftDueMs_ = session_.Line.Time().GetTickCount() + settleMs;
}

void CalibrationWatch::KeepLeft(const CalibrationTarget& target) {
    PointOf(target).Point.AsLeft = recent_.Last()->Value;
    leftDueMs_.reset();
}

void CalibrationWatch::Drop() {
    const std::string what = target_().What;
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
        return view;
    }
    view.Faulty = lost_ || answer_ != Answer::Ok;
    view.Stable = recent_.Stable(target);
    if (const CalibrationReading* last = Last())
        view.Reading =
            ShownInSteps(last->Value, last->Step, true, session_.DecimalSeparator) + ShownUnit(target.Unit);
    if (view.Faulty)
        view.State = lost_ ? "the port has failed" : AnswerText(answer_);
    else
        view.State = view.Stable ? "stable" : Last() ? "not stable yet" : "not read yet";
    const auto error = Error();
    view.Error = error ? ErrorText(*error) : target.Remark;
    return view;
}

bool CalibrationWatch::AnyStored() const {
    return std::ranges::any_of(points_, [](const Kept& kept) { return kept.Point.Stored; });
}

std::string CalibrationWatch::StoredText() const {
    std::string text;
    for (const Kept& kept : points_)
        text += kept.Point.What + ": " + kept.Outcome + ". ";
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
    for (const Kept& kept : points_) {
        record.Points.push_back(kept.Point);
        record.Points.back().Source = SourceOf(kept.Point, kept.FoundByMeter, kept.LeftByMeter);
    }
    return record;
}

} // namespace kavro
