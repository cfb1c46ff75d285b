#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// A module of a model that belongs to no family: it answers what every module answers and nothing else.
class UnknownModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;
};

} // namespace kavro
