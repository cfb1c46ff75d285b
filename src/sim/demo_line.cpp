#include "sim/demo_line.h"

#include "sim/alarm_input_module.h"
#include "sim/analog_input_module.h"
#include "sim/analog_output_module.h"
#include "sim/converter_module.h"
#include "sim/counter_module.h"
#include "sim/digital_module.h"
#include "sim/module_factory.h"
#include "sim/port_module.h"

namespace kavro {

namespace {

constexpr int FactoryTypeCode = -1; // stands for the model's own

struct DemoModule {
    std::string_view Model;
    int Address;
    int Baud = 9600;
    bool Checksum = false;
    int TypeCode = FactoryTypeCode;
    int DataFormat = 0; // 0: the model's own
};

constexpr DemoModule DemoModules[] = {
    {"8210", 1},
    {"8220", 2},
    {"8230", 3},
    {"8240", 4},
    {"8250", 5},
    {"8260", 6, 9600, true},
    {"8250", 7, 9600, false, 0x09, 2},
    {"8310", 8, 9600, false, 0x31, 1},
    {"8320", 9},
    {"8410", 10},
    {"8420", 11, 9600, true},
    {"8430", 12},
    {"8440", 13},
    {"8450", 14},
    {"8460", 15},
    {"8470", 16, 9600, true},
    {"8510", 18},
    {"8610", 20},
    {"8999", 24},
    {"8480", 32, 19200},
    {"8510", 33, 19200, true, 0x51},
    {"8230", 34, 19200, false, 0x24, 3},
    {"8490", 48, 38400},
    {"8260", 49, 38400, false, 0x0E, 1},
    {"8620", 64, 115200, true, FactoryTypeCode, 2},
    {"8250", 255, 115200},
};

constexpr DemoModule InitialisingModule = {"8250", 22, 19200, true, 0x08, 0};

ModuleSettings SettingsOf(const DemoModule& module) {
    ModuleSettings settings = FactorySettings(module.Model);
    settings.Address = module.Address;
    settings.Baud = module.Baud;
    settings.Checksum = module.Checksum;
    settings.Revision = "A2." + std::to_string(module.Address % 10);
    if (module.TypeCode != FactoryTypeCode)
        settings.TypeCode = module.TypeCode;
    if (module.DataFormat != 0)
        settings.DataFormat = module.DataFormat;
    return settings;
}

template <class Module>
Module& FamilyAt(const SimulatedLine& line, int address) {
    return dynamic_cast<Module&>(line.ModuleAt(address));
}

// Some modules are not as they left the factory, so that every display has something to show.
void Vary(const SimulatedLine& line) {
    auto& alarmInput = FamilyAt<AlarmInputModule>(line, 1);
    alarmInput.AlarmMode = 2;
    alarmInput.LowLimit = -1.5;
    alarmInput.HighLimit = 1.5;
    FamilyAt<AlarmInputModule>(line, 4).AlarmMode = 1;
    auto& voltages = FamilyAt<AnalogInputModule>(line, 5);
    voltages.OffsetError = 0.4;
    voltages.SpanError = -0.3;
    auto& temperatures = FamilyAt<AnalogInputModule>(line, 6);
    temperatures.ColdJunctionError = -1.8;
    temperatures.OpenChannels = 0x08;
    FamilyAt<AnalogInputModule>(line, 7).EnabledMask = 0x3B;
    auto& current = FamilyAt<AnalogOutputModule>(line, 8);
    current.Error4mA = 0.012; // three trim counts
    current.Error20mA = -0.02;
    auto& outputs = FamilyAt<DigitalModule>(line, 12);
    outputs.OutputInverted = true;
    outputs.Commanded = 0x0F05;
    FamilyAt<DigitalModule>(line, 13).InputInverted = true;
    auto& ports = FamilyAt<PortModule>(line, 15);
    ports.Directions = 0x0A; // A and CH are inputs, B and CL outputs
    ports.Commanded = 0x003C05;
    auto& counters = FamilyAt<CounterModule>(line, 18).Counters;
    counters[0].Started = true;
    counters[0].MaximumCount = 100000;
    counters[1].Count = 6000;
    counters[1].AlarmEnabled = true;
    counters[1].AlarmLimit = 5000;
    FamilyAt<CounterModule>(line, 33).LongGateTime = true;
    auto& converter = FamilyAt<ConverterModule>(line, 64);
    converter.Rs485 = false;
    converter.Parity = 3; // even
    converter.StopBits = 1;
    converter.SecondBaud = 19200;
}

} // namespace

SimulatedLine DemoLine() {
    SimulatedLine line;
    for (const DemoModule& module : DemoModules)
        line.Add(MakeModule(SettingsOf(module)));
    ModuleSettings initialising = SettingsOf(InitialisingModule);
    initialising.Initialisation = true;
    line.Add(MakeModule(std::move(initialising)));
    Vary(line);
    return line;
}

} // namespace kavro
