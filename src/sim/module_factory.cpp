#include "sim/module_factory.h"

#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/analog_output_module.h"
#include "sim/converter_module.h"
#include "sim/counter_module.h"
#include "sim/digital_module.h"
#include "sim/port_module.h"
#include "sim/unknown_module.h"
#include "sim/voltage_output_module.h"

namespace kavro {

namespace {

template <class Module>
std::unique_ptr<SimulatedModule> Make(ModuleSettings settings) {
    return std::make_unique<Module>(std::move(settings));
}

struct ModelEntry {
    std::string_view Model;
    int TypeCode;
    int DataFormat;
    std::unique_ptr<SimulatedModule> (*Make)(ModuleSettings settings);
};

// The data format of a converter is its data bits - 5.
constexpr ModelEntry Models[] = {
    {"8210", 0x05, 0, Make<AlarmInputModule>},   {"8220", 0x0D, 0, Make<AlarmInputModule>},
    {"8230", 0x20, 0, Make<AnalogInputModule>},  {"8240", 0x08, 0, Make<AlarmInputModule>},
    {"8250", 0x08, 0, Make<AnalogInputModule>},  {"8260", 0x0F, 0, Make<AnalogInputModule>},
    {"8310", 0x30, 0, Make<AnalogOutputModule>}, {"8320", 0x33, 0, Make<VoltageOutputModule>},
    {"8410", 0x40, 0, Make<DigitalModule>},      {"8420", 0x40, 0, Make<DigitalModule>},
    {"8430", 0x40, 0, Make<DigitalModule>},      {"8440", 0x40, 0, Make<DigitalModule>},
    {"8450", 0x40, 0, Make<DigitalModule>},      {"8460", 0x40, 0, Make<PortModule>},
    {"8470", 0x40, 0, Make<DigitalModule>},      {"8480", 0x40, 0, Make<DigitalModule>},
    {"8490", 0x40, 0, Make<DigitalModule>},      {"8510", 0x50, 0, Make<CounterModule>},
    {"8610", 0x00, 3, Make<ConverterModule>},    {"8620", 0x00, 3, Make<ConverterModule>},
};

constexpr ModelEntry AnyOtherModel = {"", 0x00, 0, Make<UnknownModule>};

const ModelEntry& EntryOf(std::string_view model) {
    for (const ModelEntry& entry : Models)
        if (entry.Model == model)
            return entry;
    return AnyOtherModel;
}

} // namespace

ModuleSettings FactorySettings(std::string_view model) {
    const ModelEntry& entry = EntryOf(model);
    return {.Model = std::string(model), .TypeCode = entry.TypeCode, .DataFormat = entry.DataFormat};
}

bool IsSimulatedModel(std::string_view model) {
    return &EntryOf(model) != &AnyOtherModel;
}

std::unique_ptr<SimulatedModule> MakeModule(ModuleSettings settings) {
    const ModelEntry& entry = EntryOf(settings.Model);
    return entry.Make(std::move(settings));
}

std::unique_ptr<SimulatedModule> MakeModule(std::string_view model, int address, int baud, bool checksum) {
    ModuleSettings settings = FactorySettings(model);
    settings.Address = address;
    settings.Baud = baud;
    settings.Checksum = checksum;
    return MakeModule(std::move(settings));
}

} // namespace kavro
