#include "sim/analog_input_module.h"

#include "sim/readings.h"
#include "sim/wire_text.h"

namespace kavro {

AnalogInputModule::AnalogInputModule(ModuleSettings settings)
    : SimulatedModule(std::move(settings)), Channels(Settings.Model == "8230" ? 3 : 8),
      EnabledMask((1U << Channels) - 1) {}

std::optional<std::string> AnalogInputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AnalogInputModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AAd", [](Self& module, const Request& request) { return module.ReadChannel(request); }},
        {"$AA6", [](Self& module, const Request&) { return module.Valid(WireHex(module.EnabledMask, 2)); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

std::string AnalogInputModule::ReadChannel(const Request& request) const {
    const int channel = request.Arguments.front() - '0';
    if (channel >= Channels || (EnabledMask >> channel & 1U) == 0)
        return Refusal();
    const RangeShape shape = ShapeOf(Settings.TypeCode);
    const double value = MovingValue(shape, request.Moment, Settings.Address + channel);
    return Data(ReadingText(value, shape, Settings.DataFormat));
}

} // namespace kavro
