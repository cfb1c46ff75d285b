#include "calib/calibration_target.h"

#include "link/codes.h"
#include "link/text.h"

#include <algorithm>
#include <iterator>

namespace kavro {

namespace {

constexpr const char* Degrees = "C";
constexpr double VoltsPerMillivolt = 0.001;
constexpr const char* NoSignalText = "none: no signal is known for this range";
constexpr const char* DegreesText = "none: the module reads degrees here";
constexpr const char* NoTargetText = "none: enter the target temperature";

// Reference signals of the range codes `First` to `Last`.
struct Reference {
    std::int16_t First = 0, Last = 0;
    ReferenceTexts Texts;
};

// "0 mV" of the ranges 8 to 10, and of both in range 7, are meant as they stand.
constexpr Reference References[] = {
    {0, 0, {"0 mV", "+15 mV"}},        {1, 1, {"0 mV", "+50 mV"}},        {2, 2, {"0 mV", "+100 mV"}},
    {3, 3, {"0 mV", "+500 mV"}},       {4, 4, {"0 V", "+1 V"}},           {5, 5, {"0 V", "+2.5 V"}},
    {6, 6, {"0 mA", "+20 mA"}},        {7, 7, {"0 mV", "0 mV"}},          {8, 8, {"0 mV", "+10 V"}},
    {9, 9, {"0 mV", "+5 V"}},          {10, 10, {"0 mV", "+1 V"}},        {11, 11, {"0 mV", "+500 mV"}},
    {12, 12, {"0 mV", "+150 mV"}},     {13, 13, {"0 mA", "+20 mA"}},      {14, 14, {"0 mV", "+50 mV"}},
    {15, 15, {"0 mV", "+55 mV"}},      {16, 16, {"0 mV", "+30 mV"}},      {17, 17, {"0 mV", "+78 mV"}},
    {18, 18, {"0 mV", "+25 mV"}},      {19, 19, {"0 mV", "+19.5 mV"}},    {20, 20, {"0 mV", "+15 mV"}},
    {21, 21, {"0 mV", "+55 mV"}},      {22, 22, {"0 mV", "+39 mV"}},      {32, 34, {"50 ohms", "200 ohms"}},
    {35, 35, {"50 ohms", "350 ohms"}}, {36, 38, {"50 ohms", "200 ohms"}}, {39, 40, {"50 ohms", "350 ohms"}},
    {41, 41, {"50 ohms", "200 ohms"}}, {42, 42, {"0 ohms", "60 ohms"}},
};

// A reading in percent or counts has no value where the full scale is not known.
bool HasValue(const ModuleRecord& record) {
    const bool scaled = record.DataFormat == PercentOfRange || record.DataFormat == TwosComplement;
    return record.DataFormat >= EngineeringUnits && record.DataFormat <= Ohms &&
           (!scaled || RangeFullScale(record.InputRange) > 0);
}

// The signal in the unit of the readings.
std::optional<double> InUnit(const CalibrationTarget& target) {
    if (target.AppliedUnit == target.Unit)
        return target.Applied;
    if (target.AppliedUnit == "mV" && target.Unit == "V")
        return target.Applied * VoltsPerMillivolt;
    return std::nullopt;
}

} // namespace

ReferenceTexts ReferenceOf(std::int16_t range) {
    const auto found = std::ranges::find_if(
        References, [range](const Reference& row) { return row.First <= range && range <= row.Last; });
    return found == std::end(References) ? ReferenceTexts{} : found->Texts;
}

CalibrationTarget InputTarget(const ModuleRecord& record) {
    const std::string unit = Trim(RangeUnit(record.InputRange, record.DataFormat));
    double fullScale = RangeFullScale(record.InputRange);
    if (unit == "ohms") // that of the range may be in degrees
        fullScale = NumericValue(ReferenceOf(record.InputRange).Span);
    return {.Reading = HasValue(record) ? ReadingOf::Input : ReadingOf::Nothing,
            .Unit = unit,
            .FullScale = fullScale};
}

CalibrationTarget InputTarget(const ModuleRecord& record, const char* what, const std::string& reference) {
    CalibrationTarget target = InputTarget(record);
    target.What = what;
    if (reference.empty() || target.Unit.empty()) {
        target.Remark = NoSignalText;
        return target;
    }
    target.Applied = NumericValue(reference);
    target.AppliedUnit = reference.substr(reference.rfind(' ') + 1);
    target.Signal = InUnit(target);
    if (!target.Signal)
        target.Remark = DegreesText;
    return target;
}

CalibrationTarget ColdJunctionTarget(const ModuleRecord& record, std::optional<double> temperature) {
    const bool degrees = Trim(RangeUnit(record.InputRange, record.DataFormat)) == Degrees;
    return {.Reading = ReadingOf::ColdJunction,
            .What = "Cold junction",
            .Signal = temperature,
            .Unit = Degrees,
            .FullScale = degrees ? RangeFullScale(record.InputRange) : 0,
            .Applied = temperature.value_or(0),
            .AppliedUnit = Degrees,
            .Remark = temperature ? "" : NoTargetText};
}

} // namespace kavro
