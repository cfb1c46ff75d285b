#include "sim/calibrated_input.h"

#include "sim/readings.h"
#include "sim/simulated_model.h"
#include "sim/wire_text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr double ColdJunctionTemperature = 25.3; // degrees
constexpr double DegreesPerCount = 0.0153;
constexpr int FirstThermocouple = 0x0E, LastThermocouple = 0x16; // type codes

} // namespace

std::optional<std::string> CalibratedInput::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = CalibratedInput;
    // The module takes whatever signal is applied for the reference: its error is gone afterwards.
    static constexpr CommandEntry<Self> Commands[] = {
        {"$AA0",
         [](Self& module, const Request&) {
             module.SpanError = 0;
             return module.Valid();
         }},
        {"$AA1",
         [](Self& module, const Request&) {
             module.OffsetError = 0;
             return module.Valid();
         }},
    };
    static constexpr CommandEntry<Self> ColdJunctionCommands[] = {
        {"$AA3",
         [](Self& module, const Request&) {
             return module.Data(WireSigned(ColdJunctionTemperature + module.ColdJunctionShift(), 4, 1));
         }},
        {"$AA9nhhhh",
         [](Self& module, const Request& request) { return module.CorrectColdJunction(request); }},
    };
    if (SimulatedModelNamed(Settings.Model).Analog.ColdJunction)
        if (auto reply = AnswerFrom(ColdJunctionCommands, *this, command, moment))
            return reply;
    return AnswerFrom(Commands, *this, command, moment);
}

double CalibratedInput::Reading(int channel, std::int64_t moment) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const bool thermocouple = Settings.TypeCode >= FirstThermocouple && Settings.TypeCode <= LastThermocouple;
    const double signal = HeldSignal.value_or(MovingValue(shape, moment, Settings.Address + channel));
    const double error = (shape.FullScale * OffsetError + signal * SpanError) / 100;
    const double shift = thermocouple ? ColdJunctionShift() : 0;
    return std::clamp(signal + error + shift, shape.Low, shape.High);
}

std::string CalibratedInput::ReadingReply(double value) const {
    return Data(ReadingText(value, ShapeOf(Settings.TypeCode), Settings.DataFormat));
}

// How far the measured temperature is from the real one.
double CalibratedInput::ColdJunctionShift() const {
    return ColdJunctionError + ColdJunctionCorrection * DegreesPerCount;
}

std::string CalibratedInput::CorrectColdJunction(const Request& request) {
    const char sign = request.Arguments.front();
    if (sign != '+' && sign != '-')
        return Refusal();
    const auto counts = static_cast<int>(FromWireHex(std::string_view(request.Arguments).substr(1)));
    ColdJunctionCorrection = sign == '-' ? -counts : counts;
    return Valid();
}

} // namespace kavro
