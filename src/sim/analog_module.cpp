#include "sim/analog_module.h"

namespace kavro {

namespace {

struct AnalogModel {
    std::string_view Model;
    int FirstCode, LastCode; // type codes
    unsigned Formats;        // bit n: data format n
};

constexpr int MissingCode = 0x07; // no range has it
constexpr unsigned AllButOhms = 0x7;
constexpr unsigned EngineeringAndOhms = 0x9;
constexpr unsigned EngineeringAlone = 0x1;

constexpr AnalogModel AnalogModels[] = {
    {"8210", 0x00, 0x16, AllButOhms},         {"8220", 0x08, 0x0D, AllButOhms},
    {"8230", 0x20, 0x2A, EngineeringAndOhms}, {"8240", 0x08, 0x0D, AllButOhms},
    {"8250", 0x08, 0x0D, AllButOhms},         {"8260", 0x00, 0x16, AllButOhms},
    {"8310", 0x30, 0x32, AllButOhms},         {"8320", 0x33, 0x33, EngineeringAlone},
};

constexpr AnalogModel NoModel = {"", 0, -1, 0};

const AnalogModel& ModelNamed(std::string_view name) {
    for (const AnalogModel& model : AnalogModels)
        if (model.Model == name)
            return model;
    return NoModel;
}

} // namespace

bool AnalogModule::HasTypeCode(int typeCode) const {
    const AnalogModel& model = ModelNamed(Settings.Model);
    return typeCode >= model.FirstCode && typeCode <= model.LastCode && typeCode != MissingCode;
}

bool AnalogModule::HasFormat(int bits) const {
    return bits <= 3 && (ModelNamed(Settings.Model).Formats >> bits & 1U) != 0;
}

} // namespace kavro
