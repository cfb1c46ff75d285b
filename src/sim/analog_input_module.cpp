#include "sim/analog_input_module.h"

#include "sim/readings.h"
#include "sim/simulated_model.h"
#include "sim/wire_text.h"

namespace kavro {

AnalogInputModule::AnalogInputModule(ModuleSettings settings)
    : CalibratedInput(std::move(settings)), Channels(SimulatedModelNamed(Settings.Model).Analog.Channels),
      EnabledMask((1U << Channels) - 1) {}

std::optional<std::string> AnalogInputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AnalogInputModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AAd", [](Self& module, const Request& request) { return module.ReadChannel(request); }},
        {"$AA6", [](Self& module, const Request&) { return module.Valid(WireHex(module.EnabledMask, 2)); }},
        {"$AA5hh", [](Self& module, const Request& request) { return module.EnableChannels(request); }},
    };
    static constexpr CommandEntry<Self> OpenStatusCommands[] = {
        {"$AABA", [](Self& module, const Request&) { return module.Valid(WireHex(module.OpenChannels, 2)); }},
    };
    if (SimulatedModelNamed(Settings.Model).Analog.OpenStatus)
        if (auto reply = AnswerFrom(OpenStatusCommands, *this, command, moment))
            return reply;
    if (auto reply = AnswerFrom(Commands, *this, command, moment))
        return reply;
    return CalibratedInput::AnswerOwn(command, moment);
}

std::string AnalogInputModule::ReadChannel(const Request& request) const {
    const int channel = request.Arguments.front() - '0';
    if (channel >= Channels || (EnabledMask >> channel & 1U) == 0)
        return Refusal();
    const bool open = (OpenChannels >> channel & 1U) != 0;
    return ReadingReply(open ? ShapeOf(Settings.TypeCode).High : Reading(channel, request.Moment));
}

std::string AnalogInputModule::EnableChannels(const Request& request) {
    const unsigned mask = FromWireHex(request.Arguments);
    if (mask >> Channels != 0)
        return Refusal();
    EnabledMask = mask;
    return Valid();
}

} // namespace kavro
