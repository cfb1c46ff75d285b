#include "sim/simulated_model.h"

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

constexpr unsigned AllButOhms = 0x7;
constexpr unsigned EngineeringAndOhms = 0x9;
constexpr unsigned EngineeringAlone = 0x1;
constexpr bool WithColdJunction = true;
constexpr bool WithOpenStatus = true;

constexpr SimulatedModel Models[] = {
    // type code, data format; analog: channels, type codes, formats
    {"8210", Make<AlarmInputModule>, 0x05, 0, {1, 0x00, 0x16, AllButOhms, WithColdJunction}},
    {"8220", Make<AlarmInputModule>, 0x0D, 0, {1, 0x08, 0x0D, AllButOhms}},
    {"8230", Make<AnalogInputModule>, 0x20, 0, {3, 0x20, 0x2A, EngineeringAndOhms}},
    {"8240", Make<AlarmInputModule>, 0x08, 0, {1, 0x08, 0x0D, AllButOhms}},
    {"8250", Make<AnalogInputModule>, 0x08, 0, {8, 0x08, 0x0D, AllButOhms}},
    {"8260", Make<AnalogInputModule>, 0x0F, 0, {8, 0x00, 0x16, AllButOhms, WithColdJunction, WithOpenStatus}},
    {"8310", Make<AnalogOutputModule>, 0x30, 0, {0, 0x30, 0x32, AllButOhms}},
    {"8320", Make<VoltageOutputModule>, 0x33, 0, {0, 0x33, 0x33, EngineeringAlone}},
    // digital: inputs, outputs
    {"8410", Make<DigitalModule>, 0x40, 0, {}, 8, 8},
    {"8420", Make<DigitalModule>, 0x40, 0, {}, 16, 0},
    {"8430", Make<DigitalModule>, 0x40, 0, {}, 0, 16},
    {"8440", Make<DigitalModule>, 0x40, 0, {}, 8, 0},
    {"8450", Make<DigitalModule>, 0x40, 0, {}, 7, 8},
    {"8460", Make<PortModule>, 0x40},
    {"8470", Make<DigitalModule>, 0x40, 0, {}, 4, 4},
    {"8480", Make<DigitalModule>, 0x40, 0, {}, 0, 8},
    {"8490", Make<DigitalModule>, 0x40, 0, {}, 4, 8},
    {"8510", Make<CounterModule>, 0x50},
    {"8610", Make<ConverterModule>, 0x00, 3},
    {"8620", Make<ConverterModule>, 0x00, 3},
};

constexpr SimulatedModel AnyOther = {"", Make<UnknownModule>};

} // namespace

const SimulatedModel& SimulatedModelNamed(std::string_view name) {
    for (const SimulatedModel& model : Models)
        if (model.Name == name)
            return model;
    return AnyOther;
}

} // namespace kavro
