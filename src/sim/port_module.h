#pragma once

#include "sim/simulated_module.h"

#include <optional>

namespace kavro {

/// Digital lines in four ports, each of which is an input or an output: 8460. The lines are a word of 24
/// bits: 23 to 16 port A, 15 to 8 port B, 7 to 4 port CH, 3 to 0 port CL.
class PortModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

    unsigned Directions = 0x0F;         ///< a set bit is an input: bit 3 port A, 2 B, 1 CH, 0 CL
    unsigned Commanded = 0;             ///< word of the outputs as commanded
    std::optional<unsigned> HeldInputs; ///< word of the levels at inputs; nothing: they change over time

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    void Forget() override { Commanded = 0; }

private:
    /// The lines that are inputs.
    unsigned InputLines() const;
    std::string SetDirections(const Request& request);
    std::string ReadLevels(const Request& request) const;
    std::string SetOutputs(const Request& request);
    std::string SetOutput(const Request& request);
};

} // namespace kavro
