#include "sim/digital_module.h"

#include "sim/moving_levels.h"
#include "sim/simulated_model.h"
#include "sim/wire_text.h"

namespace kavro {

DigitalModule::DigitalModule(ModuleSettings settings)
    : SimulatedModule(std::move(settings)), Inputs(SimulatedModelNamed(Settings.Model).DigitalInputs),
      Outputs(SimulatedModelNamed(Settings.Model).DigitalOutputs) {}

std::optional<std::string> DigitalModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = DigitalModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"~AACR",
         [](Self& module, const Request&) {
             return module.Valid(WireDecimal(module.OutputInverted, 1) +
                                 WireDecimal(module.InputInverted, 1));
         }},
        {"~AACPdd", [](Self& module, const Request& request) { return module.SetPolarity(request); }},
        {"$AA6", [](Self& module, const Request& request) { return module.ReadStates(request); }},
        {"@AADOhhhh", [](Self& module, const Request& request) { return module.SetOutputs(request); }},
        {"@AASOhhd", [](Self& module, const Request& request) { return module.SetOutput(request); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

std::string DigitalModule::SetPolarity(const Request& request) {
    const char output = request.Arguments[0], input = request.Arguments[1];
    if (output > '1' || input > '1')
        return Refusal();
    OutputInverted = output == '1';
    InputInverted = input == '1';
    return Valid();
}

std::string DigitalModule::ReadStates(const Request& request) const {
    const unsigned all = (1U << Inputs) - 1;
    const unsigned levels = HeldInputs.value_or(MovingLevels(request.Moment, Settings.Address, Inputs));
    const unsigned inputs = (InputInverted ? ~levels : levels) & all;
    return ValidUnaddressed(WireHex(Commanded, 4) + WireHex(inputs, 4));
}

std::string DigitalModule::SetOutputs(const Request& request) {
    const unsigned states = FromWireHex(request.Arguments);
    if (states >> Outputs != 0 || Outputs == 0)
        return Refusal();
    Commanded = states;
    return Valid();
}

std::string DigitalModule::SetOutput(const Request& request) {
    const auto channel = FromWireHex(std::string_view(request.Arguments).substr(0, 2));
    const char state = request.Arguments[2];
    if (channel >= static_cast<unsigned>(Outputs) || state > '1')
        return Refusal();
    const unsigned bit = 1U << channel;
    Commanded = state == '1' ? Commanded | bit : Commanded & ~bit;
    return Valid();
}

} // namespace kavro
