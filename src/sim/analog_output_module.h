#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// Analog output: 8310 (one output), 8320 (four outputs and digital inputs).
class AnalogOutputModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

    bool InputInverted = false; ///< 8320 only: polarity of the digital inputs

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    int FormatByte() const override { return ChecksumBit() | Settings.DataFormat; }
};

} // namespace kavro
