#include "sim/analog_module.h"

#include "sim/simulated_model.h"

namespace kavro {

namespace {

constexpr int MissingCode = 0x07; // no range has it

} // namespace

bool AnalogModule::HasTypeCode(int typeCode) const {
    const SimulatedAnalog& model = SimulatedModelNamed(Settings.Model).Analog;
    return typeCode >= model.FirstCode && typeCode <= model.LastCode && typeCode != MissingCode;
}

bool AnalogModule::HasFormat(int bits) const {
    return bits <= 3 && (SimulatedModelNamed(Settings.Model).Analog.Formats >> bits & 1U) != 0;
}

} // namespace kavro
