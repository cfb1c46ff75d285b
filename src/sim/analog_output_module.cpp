#include "sim/analog_output_module.h"

#include "sim/wire_text.h"

namespace kavro {

std::optional<std::string> AnalogOutputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = AnalogOutputModule;
    static constexpr CommandEntry<Self> CommandsOf8320[] = {
        {"~AACR",
         [](Self& module, const Request&) { return module.Valid(WireDecimal(module.InputInverted, 2)); }},
    };
    if (Settings.Model == "8320")
        return AnswerFrom(CommandsOf8320, *this, command, moment);
    return std::nullopt;
}

} // namespace kavro
