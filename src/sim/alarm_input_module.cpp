#include "sim/alarm_input_module.h"

#include "sim/moving_levels.h"
#include "sim/readings.h"
#include "sim/wire_text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

enum AlarmModes : int { Disabled, Momentary, Latched };

constexpr unsigned LowOutput = 1, HighOutput = 2;
constexpr unsigned AllOutputs = LowOutput | HighOutput;
constexpr int Inputs = 1;

} // namespace

AlarmInputModule::AlarmInputModule(ModuleSettings settings) : CalibratedInput(std::move(settings)) {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double span = shape.High - shape.Low;
    LowLimit = shape.Low + span * 0.1;
    HighLimit = shape.Low + span * 0.9;
}

std::optional<std::string> AlarmInputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AlarmInputModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AA",
         [](Self& module, const Request& request) {
             return module.ReadingReply(module.Reading(0, request.Moment));
         }},
        {"@AARL", [](Self& module, const Request&) { return module.LimitText(module.LowLimit); }},
        {"@AARH", [](Self& module, const Request&) { return module.LimitText(module.HighLimit); }},
        {"@AAPLnnnnnnn",
         [](Self& module, const Request& request) { return module.SetLimit(module.LowLimit, request); }},
        {"@AAPHnnnnnnn",
         [](Self& module, const Request& request) { return module.SetLimit(module.HighLimit, request); }},
        {"@AAEA1", [](Self& module, const Request&) { return module.SetAlarmMode(Momentary); }},
        {"@AAEA2", [](Self& module, const Request&) { return module.SetAlarmMode(Latched); }},
        {"@AADA", [](Self& module, const Request&) { return module.SetAlarmMode(Disabled); }},
        {"@AACA", [](Self& module, const Request&) { return module.ClearAlarm(); }},
        {"@AADOhh", [](Self& module, const Request& request) { return module.SetOutputs(request); }},
        {"@AADI", [](Self& module, const Request& request) { return module.ReadStates(request); }},
    };
    static constexpr CommandEntry<Self> CommandsOf8240[] = {
        {"$AA3",
         [](Self& module, const Request&) { return module.Valid(WireSigned(module.SignedSetting, 4, 0)); }},
        {"$AA5", [](Self& module, const Request&) { return module.Valid(WireHex(module.MaskSetting, 2)); }},
    };
    DriveOutputs(moment);
    if (Settings.Model == "8240")
        if (auto reply = AnswerFrom(CommandsOf8240, *this, command, moment))
            return reply;
    if (auto reply = AnswerFrom(Commands, *this, command, moment))
        return reply;
    return CalibratedInput::AnswerOwn(command, moment);
}

void AlarmInputModule::DriveOutputs(std::int64_t moment) {
    if (AlarmMode == Disabled)
        return;
    const double reading = Reading(0, moment);
    const unsigned active = (reading <= LowLimit ? LowOutput : 0) | (reading >= HighLimit ? HighOutput : 0);
    DigitalOutputs = AlarmMode == Latched ? DigitalOutputs | active : active;
}

// A limit of a larger range, from before the range was changed, shows as the end of this one.
std::string AlarmInputModule::LimitText(double limit) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    return Valid(EngineeringText(std::clamp(limit, -shape.FullScale, shape.FullScale), shape));
}

std::string AlarmInputModule::SetLimit(double& limit, const Request& request) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const auto value = FromSignedText(request.Arguments, shape.IntegerDigits, shape.Decimals);
    if (!value || std::fabs(*value) > shape.FullScale)
        return Refusal();
    limit = *value;
    return Valid();
}

// Neither outputs that were set by hand nor those of the alarm before stay on.
std::string AlarmInputModule::SetAlarmMode(int mode) {
    AlarmMode = mode;
    DigitalOutputs = 0;
    return Valid();
}

std::string AlarmInputModule::ClearAlarm() {
    if (AlarmMode != Disabled)
        DigitalOutputs = 0;
    return Valid();
}

std::string AlarmInputModule::SetOutputs(const Request& request) {
    const unsigned outputs = FromWireHex(request.Arguments);
    if (AlarmMode != Disabled || outputs > AllOutputs)
        return Refusal();
    DigitalOutputs = outputs;
    return Valid();
}

std::string AlarmInputModule::ReadStates(const Request& request) const {
    const unsigned inputs = HeldInputs.value_or(MovingLevels(request.Moment, Settings.Address, Inputs));
    return Valid(WireDecimal(AlarmMode, 1) + WireHex(DigitalOutputs, 2) + WireHex(inputs, 2));
}

} // namespace kavro
