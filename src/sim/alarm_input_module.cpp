#include "sim/alarm_input_module.h"

#include "sim/readings.h"
#include "sim/wire_text.h"

namespace kavro {

AlarmInputModule::AlarmInputModule(ModuleSettings settings) : SimulatedModule(std::move(settings)) {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double span = shape.High - shape.Low;
    LowLimit = shape.Low + span * 0.1;
    HighLimit = shape.Low + span * 0.9;
}

std::optional<std::string> AlarmInputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AlarmInputModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AA", [](Self& module, const Request& request) { return module.Read(request); }},
        {"@AARL", [](Self& module, const Request&) { return module.LimitText(module.LowLimit); }},
        {"@AARH", [](Self& module, const Request&) { return module.LimitText(module.HighLimit); }},
        {"@AADI",
         [](Self& module, const Request&) {
             return module.Valid(WireDecimal(module.AlarmMode, 1) + WireHex(module.DigitalOutputs, 2) +
                                 WireHex(module.DigitalInputs, 2));
         }},
    };
    static constexpr CommandEntry<Self> CommandsOf8240[] = {
        {"$AA3",
         [](Self& module, const Request&) { return module.Valid(WireSigned(module.SignedSetting, 4, 0)); }},
        {"$AA5", [](Self& module, const Request&) { return module.Valid(WireHex(module.MaskSetting, 2)); }},
    };
    if (Settings.Model == "8240")
        if (auto reply = AnswerFrom(CommandsOf8240, *this, command, moment))
            return reply;
    return AnswerFrom(Commands, *this, command, moment);
}

std::string AlarmInputModule::Read(const Request& request) const {
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double value = MovingValue(shape, request.Moment, Settings.Address);
    return Data(ReadingText(value, shape, Settings.DataFormat));
}

std::string AlarmInputModule::LimitText(double limit) const {
    return Valid(EngineeringText(limit, ShapeOf(Settings.TypeCode)));
}

} // namespace kavro
