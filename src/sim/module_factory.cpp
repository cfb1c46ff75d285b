#include "sim/module_factory.h"

#include "sim/simulated_model.h"

namespace kavro {

ModuleSettings FactorySettings(std::string_view model) {
    const SimulatedModel& row = SimulatedModelNamed(model);
    return {.Model = std::string(model), .TypeCode = row.TypeCode, .DataFormat = row.DataFormat};
}

bool IsSimulatedModel(std::string_view model) {
    return !SimulatedModelNamed(model).Name.empty();
}

std::unique_ptr<SimulatedModule> MakeModule(ModuleSettings settings) {
    const SimulatedModel& row = SimulatedModelNamed(settings.Model);
    return row.Make(std::move(settings));
}

std::unique_ptr<SimulatedModule> MakeModule(std::string_view model, int address, int baud, bool checksum) {
    ModuleSettings settings = FactorySettings(model);
    settings.Address = address;
    settings.Baud = baud;
    settings.Checksum = checksum;
    return MakeModule(std::move(settings));
}

} // namespace kavro
