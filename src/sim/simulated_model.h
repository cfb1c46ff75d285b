#pragma once

#include "sim/simulated_module.h"

#include <memory>
#include <string_view>

namespace kavro {

/// The type codes and formats of an analog model, and what it has beside its readings.
struct SimulatedAnalog {
    int Channels = 0;                 ///< of its inputs
    int FirstCode = 0, LastCode = -1; ///< type codes; 07 is none
    unsigned Formats = 0;             ///< bit n: data format n
    bool ColdJunction = false;        ///< measures the temperature at its terminals
    bool OpenStatus = false;          ///< tells which inputs nothing is connected to
};

/// A model of the simulated line. What the programs know of it stands elsewhere, on purpose: one mistake
/// cannot hide on both sides.
struct SimulatedModel {
    std::string_view Name;
    std::unique_ptr<SimulatedModule> (*Make)(ModuleSettings settings);
    int TypeCode = 0;   ///< with which it leaves the factory
    int DataFormat = 0; ///< and this; of a converter its data bits - 5
    SimulatedAnalog Analog = {};
    int DigitalInputs = 0, DigitalOutputs = 0;
};

/// The model of that name; for any other one without a name, which answers what all modules answer.
const SimulatedModel& SimulatedModelNamed(std::string_view name);

} // namespace kavro
