#include "calib/calibration_record.h"

#include "link/text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double Finest = 1e9; // steps of a unit; a module tells six decimals at most
constexpr std::size_t LongestName = 50;

// 4.345 less 4 is 0.345, and no 0.
double Rounded(double value) {
    return std::round(value * Finest) / Finest + 0.0;
}

// As a part of a file's name on any system.
std::string FileName(const std::string& text) {
    constexpr std::string_view Refused = "<>:\"/\\|?*";
    std::string name = Trim(FirstCharacters(Trim(text), LongestName));
    for (char& character : name)
        if (static_cast<unsigned char>(character) < ' ' || character == 0x7F ||
            Refused.find(character) != std::string_view::npos)
            character = '-';
    if (name.starts_with('.')) // it would be hidden
        name.front() = '-';
    return name;
}

} // namespace

std::optional<double> ErrorOf(const CalibrationPoint& point, const std::optional<double>& measured) {
    return measured ? std::optional(Rounded(*measured - point.Signal)) : std::nullopt;
}

std::optional<double> PercentOfFullScale(const CalibrationRecord& record, const CalibrationPoint& point,
                                         const std::optional<double>& error) {
    if (!error || record.FullScale <= 0 || point.Unit != record.Unit)
        return std::nullopt;
    return Rounded(*error / record.FullScale * 100);
}

CalibrationResult ResultOf(const CalibrationRecord& record, const CalibrationPoint& point) {
    if (!point.Adjusted)
        return CalibrationResult::NotJudged;
    if (point.Stored != true)
        return CalibrationResult::Fail;
    if (!point.Comparable)
        return CalibrationResult::NotJudged;
    const auto error = ErrorOf(point, point.AsLeft);
    if (!error)
        return CalibrationResult::Fail;
    const auto percent = PercentOfFullScale(record, point, error);
    if (!percent)
        return CalibrationResult::NotJudged;
    return std::abs(*percent) <= record.Entries.TolerancePercent ? CalibrationResult::Pass
                                                                 : CalibrationResult::Fail;
}

CalibrationResult ResultOf(const CalibrationRecord& record) {
    if (record.Aborted)
        return CalibrationResult::Aborted;
    const auto any = [&](CalibrationResult result) {
        return std::ranges::any_of(
            record.Points, [&](const CalibrationPoint& point) { return ResultOf(record, point) == result; });
    };
    if (any(CalibrationResult::Fail))
        return CalibrationResult::Fail;
    return any(CalibrationResult::Pass) ? CalibrationResult::Pass : CalibrationResult::NotJudged;
}

std::string ShownResult(CalibrationResult result) {
    switch (result) {
    case CalibrationResult::Pass:
        return "pass";
    case CalibrationResult::Fail:
        return "fail";
    case CalibrationResult::NotJudged:
        return "not judged";
    case CalibrationResult::Aborted:
        break;
    }
    return "aborted";
}

std::string RecordName(const CalibrationRecord& record, const std::string& date) {
    const std::string tag = FileName(record.Tag);
    return (tag.empty() ? FileName(record.Model) : tag) + "_" + ToHex(record.Address, 2) + "_" + date;
}

} // namespace kavro
