#pragma once

#include "sim/simulated_module.h"

#include <optional>

namespace kavro {

/// Digital inputs and outputs of a fixed direction. Bit n of a state is channel n.
class DigitalModule : public SimulatedModule {
public:
    explicit DigitalModule(ModuleSettings settings);

    int Inputs, Outputs;                ///< number of channels
    unsigned Commanded = 0;             ///< state of the outputs as commanded and as reported
    bool OutputInverted = false;        ///< polarity of the outputs; on the wire nothing shows it
    bool InputInverted = false;         ///< polarity of the inputs
    std::optional<unsigned> HeldInputs; ///< levels at the input terminals; nothing: they change over time

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    void Forget() override { Commanded = 0; }

private:
    std::string SetPolarity(const Request& request);
    std::string ReadStates(const Request& request) const;
    std::string SetOutputs(const Request& request);
    std::string SetOutput(const Request& request);
};

} // namespace kavro
