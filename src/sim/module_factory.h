#pragma once

#include "sim/simulated_module.h"

#include <memory>
#include <string_view>

namespace kavro {

/// The settings with which a model leaves the factory: its own type code, at address 1, 9600 baud, without
/// checksum.
ModuleSettings FactorySettings(std::string_view model);

/// Whether there is such a model; any other name gives a module that answers what all modules answer.
bool IsSimulatedModel(std::string_view model);

/// A module of the class that belongs to `settings.Model`; an unknown model gives an `UnknownModule`.
/// Throws `RuntimeFailure` for an address or a baud rate that no module can have.
std::unique_ptr<SimulatedModule> MakeModule(ModuleSettings settings);

/// The same with the model's factory settings and these.
std::unique_ptr<SimulatedModule> MakeModule(std::string_view model, int address, int baud = 9600,
                                            bool checksum = false);

} // namespace kavro
