#include "sim/analog_output_module.h"

#include "sim/readings.h"
#include "sim/wire_text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr int VoltageCode = 0x32;
constexpr double LowPoint = 4, HighPoint = 20; // mA
constexpr double TrimStep = 0.004;             // mA, about one step of a 12-bit converter
constexpr double HalfDigit = 0.0005;           // of the engineering data
constexpr double LastStep = 4095;              // 12 bits

} // namespace

std::optional<std::string> AnalogOutputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AnalogOutputModule;
    constexpr auto drive = [](Self& module, const Request& request) { return module.Drive(request); };
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AAnnnnnn", drive},
        {"#AAnnnnnnn", drive},
        {"#AAhhh", drive},
        {"$AA6",
         [](Self& module, const Request&) { return module.Valid(module.DataText(module.LastOutput())); }},
        {"$AA8",
         [](Self& module, const Request&) { return module.Valid(FixedText(module.AtTerminals(), 2, 3)); }},
        {"$AA3hh", [](Self& module, const Request& request) { return module.Trim(request); }},
        {"$AA0", [](Self& module, const Request&) { return module.Store(LowPoint, module.Error4mA); }},
        {"$AA1", [](Self& module, const Request&) { return module.Store(HighPoint, module.Error20mA); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

void AnalogOutputModule::KeepFormat(int bits) {
    AnalogModule::KeepFormat(bits);
    trim_ = 0;
}

// Percent and steps count from the low end of the range to its high end.
std::optional<double> AnalogOutputModule::FromData(std::string_view data) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double span = shape.High - shape.Low;
    std::optional<double> value;
    if (Settings.DataFormat == 1) {
        if (const auto percent = FromSignedText(data, 3, 2))
            value = shape.Low + span * *percent / 100;
    } else if (Settings.DataFormat == 2) {
        if (data.size() == 3)
            value = shape.Low + span * FromWireHex(data) / LastStep;
    } else {
        value = FromFixedText(data, 2, 3);
    }
    return value && *value >= shape.Low && *value <= shape.High ? value : std::nullopt;
}

std::string AnalogOutputModule::DataText(double value) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double share = (value - shape.Low) / (shape.High - shape.Low);
    if (Settings.DataFormat == 1)
        return WireSigned(share * 100, 3, 2);
    if (Settings.DataFormat == 2)
        return WireHex(static_cast<std::uint32_t>(std::lround(share * LastStep)), 3);
    return FixedText(value, 2, 3);
}

// After a change of the range the output may lie outside the new one.
double AnalogOutputModule::LastOutput() const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    return std::clamp(output_, shape.Low, shape.High);
}

double AnalogOutputModule::AtTerminals() const {
    const double output = LastOutput();
    if (Settings.TypeCode == VoltageCode)
        return output;
    const double slope = (Error20mA - Error4mA) / (HighPoint - LowPoint);
    return std::max(0.0, output + Error4mA + slope * (output - LowPoint) + trim_);
}

bool AnalogOutputModule::StandsAt(double current) const {
    return Settings.TypeCode != VoltageCode && std::fabs(LastOutput() - current) < HalfDigit;
}

std::string AnalogOutputModule::Drive(const Request& request) {
    const auto value = FromData(request.Arguments);
    if (!value)
        return Refusal();
    output_ = *value;
    trim_ = 0;
    return Data({});
}

std::string AnalogOutputModule::Trim(const Request& request) {
    if (!StandsAt(LowPoint) && !StandsAt(HighPoint))
        return Refusal();
    trim_ += TrimCount(request.Arguments) * TrimStep;
    return Valid();
}

std::string AnalogOutputModule::Store(double current, double& error) {
    if (!StandsAt(current))
        return Refusal();
    error += trim_;
    trim_ = 0;
    return Valid();
}

} // namespace kavro
