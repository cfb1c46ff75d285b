#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// Communication converter. Its configuration has its own layout: type code (two digits), second
/// baud code and baud code (one hexadecimal digit each), format word (four digits).
class ConverterModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

    int SecondBaud = 9600;                    ///< of the converter's other side
    bool Rs485 = true;                        ///< RS-485, else RS-422: bit 15 of the format word
    bool Setting13 = false, Setting8 = false; ///< the settings in bits 13 and 8
    int Parity = 0;                           ///< 0 and 2 none, 1 odd, 3 even: bits 3 and 4
    int StopBits = 0;       ///< stop bits - 1: bit 2; the data bits are `Settings.DataFormat` + 5
    unsigned OtherBits = 0; ///< the format word's bits without a meaning here, as they were set

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    std::string ConfigurationText() const override;
    // Refuses the configuration command of the other families: there is no format byte.
    bool HasFormat(int /*bits*/) const override { return false; }

private:
    std::string Configure(std::string_view digits);
};

} // namespace kavro
