#include "map/command_table.h"

#include "link/codes.h"

namespace kavro {

namespace {

constexpr CommandForm EveryModel[] = {
    {'$', "2", "!AAhhhhhh"},
    {'$', "M", "!AAM"},
    {'$', "F", "!AAT"},
    {'%', "*", "!AA"},
};

constexpr CommandForm AlarmInputs[] = {
    {'#', "", ">V"},
    {'@', "RL", "!AAE"},
    {'@', "RH", "!AAE"},
    {'@', "PL*", "!AA"},
    {'@', "PH*", "!AA"},
    {'@', "EAn", "!AA"},
    {'@', "DA", "!AA"},
    {'@', "CA", "!AA"},
    {'@', "DI", "!AAtzqzb"},
    {'@', "DO*", "!AA"},
    {'$', "3", "!AAS", "240"},
    {'$', "5", "!AAhh"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3", ">K"},
    {'$', "9*", "!AA"},
};

constexpr CommandForm MultiInputs[] = {
    {'#', "n", ">V"},
    {'$', "6", "!AAC"},
    {'$', "BA", "!AAC"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3", ">K"},
    {'$', "9*", "!AA"},
};

constexpr CommandForm SingleOutput[] = {
    {'$', "6", "!AAO"},
    {'#', "*", ">"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3*", "!AA"},
};

constexpr CommandForm VoltageOutputs[] = {
    {'$', "6p", "!AAP"},
    {'$', "8", "!ohzzzz"},
    {'~', "CR", "!AAzb"},
    {'#', "*", ">"},
    // calibration
    {'$', "0", "!AA"},
    {'$', "1", "!AA"},
    {'$', "3*", "!AA"},
};

constexpr CommandForm DigitalModules[] = {
    {'~', "CR", "!AAbb"},
    {'$', "6", "!W"},
    {'@', "*", "!AA"},
};

constexpr CommandForm PortModule[] = {
    {'~', "CR", "!AAbb"},
    {'$', "6", "!zhzz"},
    {'$', "8", "!hhhhhh"},
    {'@', "*", "!AA"},
};

constexpr CommandForm Counters[] = {
    {'#', "n", ">hhhhhhhh"},
    {'$', "B", "!AAb"},
    {'$', "A", "!AAt"},
    {'$', "5", "!AAbb"},
    {'$', "7", "!AAbb"},
    {'$', "3", "!AAhhhhhhhh"},
    {'@', "G", "!AAhhhhhhhh"},
    {'$', "4", "!AAb"},
    {'$', "0H", "!AAdddd"},
    {'$', "0L", "!AAdddd"},
    {'$', "1H", "!AAdd"},
    {'$', "1L", "!AAdd"},
    {'@', "DI", "!AAbbzq"},
    {'@', "RP", "!AAhhhhhhhhhhhhhhhh"},
    {'@', "RA", "!AAhhhhhhhhhhhhhhhh"},
    // settings
    {'$', "B*", "!AA"},
    {'$', "A*", "!AA"},
    {'$', "5n*", "!AA"},
    {'$', "6n", "!AA"},
    {'$', "3n*", "!AA"},
    {'@', "P*", "!AA"},
    {'@', "SA*", "!AA"},
    {'$', "4*", "!AA"},
    {'$', "0H*", "!AA"},
    {'$', "0L*", "!AA"},
    {'$', "1H*", "!AA"},
    {'$', "1L*", "!AA"},
    {'@', "EAn", "!AA"},
    {'@', "DAn", "!AA"},
};

constexpr CommandForm Converters[] = {
    {'$', "2", "!AAhhhhhhhh"},
};

} // namespace

std::span<const CommandForm> CommonCommands() {
    return EveryModel;
}

std::span<const CommandForm> CommandsOf(std::string_view model, std::string_view suffix) {
    switch (ModuleFamily(model)) {
    case DigitalIo:
        return suffix == "460" ? std::span<const CommandForm>(PortModule) : DigitalModules;
    case AnalogInput:
        return AlarmInputs;
    case AnalogOutput:
        return suffix == "310" ? std::span<const CommandForm>(SingleOutput) : VoltageOutputs;
    case MultiAnalogInput:
        return MultiInputs;
    case CounterFrequency:
        return Counters;
    case Converter:
        return Converters;
    default:
        return {};
    }
}

} // namespace kavro
