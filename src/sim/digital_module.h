#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// Digital inputs and outputs: 8410 to 8490.
class DigitalModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

    bool OutputInverted = false; ///< polarity of the outputs
    bool InputInverted = false;  ///< polarity of the inputs

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
};

} // namespace kavro
