#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// What all analog modules share: each model has its own ranges and data formats, and the format byte holds
/// the data format.
class AnalogModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

protected:
    bool HasTypeCode(int typeCode) const override;
    bool HasFormat(int bits) const override;
    void KeepFormat(int bits) override { Settings.DataFormat = bits; }
    int FormatByte() const override { return ChecksumBit() | Settings.DataFormat; }
};

} // namespace kavro
