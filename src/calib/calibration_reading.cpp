#include "calib/calibration_reading.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

// Readings are stable when at least so many in a row, over at least that time, lie within so many steps of
// the last digit or within that share of full scale, whichever is more: a hexadecimal step is finer than a
// module is quiet.
struct StableRule {
    int Readings;
    int SpanMs;
    int Steps;
    double PercentOfFullScale;
};
constexpr StableRule StableRules[] = {
    {0, 0, 0, 0},       // nothing
    {4, 2000, 2, 0.01}, // input
    {4, 2000, 1, 0},    // cold junction
    {4, 2000, 1, 0.01}, // terminals
};

constexpr std::size_t MostReadings = 32;
constexpr double Rounding = 1e-9; // of differences
constexpr double LargestCount = 32767;
constexpr int MostDecimals = 6;

double StepOf(const std::string& data, const ModuleRecord& record) {
    const double fullScale = RangeFullScale(record.InputRange);
    if (record.DataFormat == TwosComplement)
        return fullScale / LargestCount;
    const double step = StepOfDigits(data);
    return record.DataFormat == PercentOfRange ? step * fullScale / 100 : step;
}

CalibrationReading ReadInput(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const bool several = ChannelCount(record.Model).value_or(0) > 1;
    const ModuleReply reply = AskModule(session, index, '#', several ? "0" : "");
    if (reply.Answer != Answer::Ok)
        return {reply.Answer};
    const auto value = DecodeReading(reply.Data, record.DataFormat, RangeFullScale(record.InputRange)).Value;
    if (!value)
        return {Answer::Garbled};
    return {Answer::Ok, *value, StepOf(reply.Data, record)};
}

CalibrationReading ReadPlain(Session& session, int index, const char* tail) {
    const ModuleReply reply = AskModule(session, index, '$', tail);
    const auto value = LeadingNumber(reply.Data);
    if (reply.Answer != Answer::Ok || !value)
        return {reply.Answer == Answer::Ok ? Answer::Garbled : reply.Answer};
    return {Answer::Ok, *value, StepOf(reply.Data, {.DataFormat = EngineeringUnits})};
}

} // namespace

CalibrationReading ReadCalibrated(Session& session, int index, ReadingOf what) {
    switch (what) {
    case ReadingOf::Input:
        return ReadInput(session, index);
    case ReadingOf::ColdJunction:
        return ReadPlain(session, index, "3");
    case ReadingOf::Terminals:
        return ReadPlain(session, index, "8");
    default:
        return {};
    }
}

double StepOfDigits(const std::string& text) {
    const std::size_t point = text.find('.');
    const std::size_t decimals = point == std::string::npos ? 0 : text.size() - point - 1;
    return std::pow(10, -static_cast<double>(decimals));
}

int DecimalsOfStep(double step) {
    const double digits = step > 0 ? std::ceil(-std::log10(step) - Rounding) : 0;
    return static_cast<int>(std::clamp(digits, 0.0, double{MostDecimals}));
}

std::string ShownInSteps(double value, double step, bool sign, const std::string& separator) {
    const std::string text = FormatNumber(value, 1, DecimalsOfStep(step));
    return (sign && !text.starts_with('-') ? "+" : "") + ShownNumber(text, separator);
}

void RecentReadings::Add(std::int64_t ms, const CalibrationReading& reading) {
    if (reading.Answer != Answer::Ok)
        return Clear();
    if (readings_.size() == MostReadings)
        readings_.erase(readings_.begin());
    readings_.push_back({ms, reading});
}

bool RecentReadings::Stable(const CalibrationTarget& target) const {
    const StableRule& rule = StableRules[static_cast<std::size_t>(target.Reading)];
    if (readings_.empty() || rule.Readings == 0)
        return false;
    const auto& [now, last] = readings_.back();
    const double limit =
        std::max(rule.Steps * last.Step, rule.PercentOfFullScale * target.FullScale / 100) + Rounding;
    double low = last.Value;
    double high = last.Value;
    int count = 0;
    for (auto reading = readings_.rbegin(); reading != readings_.rend() && high - low <= limit; ++reading) {
        low = std::min(low, reading->Reading.Value);
        high = std::max(high, reading->Reading.Value);
        if (++count >= rule.Readings && now - reading->Ms >= rule.SpanMs)
            return high - low <= limit;
    }
    return false;
}

} // namespace kavro
