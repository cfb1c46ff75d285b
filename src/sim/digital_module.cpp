#include "sim/digital_module.h"

#include "sim/wire_text.h"

namespace kavro {

std::optional<std::string> DigitalModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = DigitalModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"~AACR",
         [](Self& module, const Request&) {
             return module.Valid(WireDecimal(module.OutputInverted, 1) +
                                 WireDecimal(module.InputInverted, 1));
         }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

} // namespace kavro
