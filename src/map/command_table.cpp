#include "map/command_table.h"

#include "link/models.h"

#include <array>

namespace kavro {

namespace {

constexpr std::string_view Polarity =
    "{outputs not inverted|outputs inverted}, {inputs not inverted|inputs inverted}";
constexpr std::string_view SetPolarity =
    "set {outputs not inverted|outputs inverted}, {inputs not inverted|inputs inverted}";
constexpr std::string_view OfBothCounts = "counter 0: {c8}, counter 1: {c8}";

constexpr CommandForm EveryModel[] = {
    {'$', "2", "!AAhhhhhh", "read configuration", "{M}{G}"},
    {'$', "M", "!AAM", "read model"},
    {'$', "F", "!AAT", "read firmware version"},
    {'%', "*", "!AA", "set {A}{G}"},
};

constexpr CommandForm AlarmInputs[] = {
    {'#', "", ">V", "read value"},
    {'@', "RL", "!AAE", "read low alarm limit"},
    {'@', "RH", "!AAE", "read high alarm limit"},
    {'@', "PL*", "!AA", "set low alarm limit to {E}"},
    {'@', "PH*", "!AA", "set high alarm limit to {E}"},
    {'@', "EAn", "!AA", "set alarm to {|momentary|latch}"},
    {'@', "DA", "!AA", "disable alarm"},
    {'@', "CA", "!AA", "clear alarm"},
    {'@', "DI", "!AAtzqzb", "read alarms",
     "alarm {disabled|momentary|latch}, outputs on: {m2:low,high}, input {0}{off|on}"},
    {'@', "DO*", "!AA", "switch alarm outputs on: {m2:low,high}"},
    {'$', "3", "!AAS", "read setting 3", {}, "240"},
    {'$', "5", "!AAhh", "read setting 5", "{h2}"},
    // calibration
    {'$', "0", "!AA", "calibrate span"},
    {'$', "1", "!AA", "calibrate offset"},
    {'$', "3", ">K", "read cold junction temperature"},
    {'$', "9*", "!AA", "correct cold junction by {s4} counts"},
};

constexpr CommandForm MultiInputs[] = {
    {'#', "n", ">V", "read channel {x}"},
    {'$', "5*", "!AA", "enable channels: {m2}"},
    {'$', "6", "!AAC", "read enabled channels"},
    {'$', "BA", "!AAC", "read channels with an open input"},
    // calibration
    {'$', "0", "!AA", "calibrate span"},
    {'$', "1", "!AA", "calibrate offset"},
    {'$', "3", ">K", "read cold junction temperature"},
    {'$', "9*", "!AA", "correct cold junction by {s4} counts"},
};

constexpr CommandForm SingleOutput[] = {
    {'$', "6", "!AAO", "read output"},
    {'$', "8", "!AAdd.ddd", "read output at the terminals", "{E}"},
    {'#', "*", ">", "set output to {O}"},
    // calibration
    {'$', "0", "!AA", "calibrate 4 mA"},
    {'$', "1", "!AA", "calibrate 20 mA"},
    {'$', "3*", "!AA", "trim output, steps: {b}"},
};

constexpr CommandForm VoltageOutputs[] = {
    {'$', "6p", "!AAP", "read output {x}"},
    {'$', "8", "!ohzzzz", "read inputs", "inputs on: {m2}{0}{0}{0}{0}"},
    {'~', "CR", "!AAzb", "read polarity", "{0}{inputs not inverted|inputs inverted}"},
    {'~', "CP*", "!AA", "set {0}{inputs not inverted|inputs inverted}"},
    {'#', "*", ">", "set output {p} to {P}"},
    // calibration
    {'$', "0", "!AA", "keep trim of output A"},
    {'$', "1", "!AA", "keep trim of output A"},
    {'$', "3*", "!AA", "trim output A, steps: {b}"},
};

constexpr CommandForm DigitalModules[] = {
    {'~', "CR", "!AAbb", "read polarity", Polarity},    {'~', "CP*", "!AA", SetPolarity},
    {'$', "6", "!W", "read inputs and outputs"},        {'@', "DO*", "!AA", "switch outputs on: {m4}"},
    {'@', "SO*", "!AA", "switch output {c2} {off|on}"}, {'@', "*", "!AA"},
};

constexpr CommandForm PortModule[] = {
    {'~', "CR", "!AAbb", "read polarity", Polarity},
    {'$', "6", "!zhzz", "read directions", "ports of inputs: {m2:CL,CH,B,A}{0}{0}"},
    {'$', "S*", "!AA", "set ports of inputs: {m2:CL,CH,B,A}"},
    {'$', "8", "!hhhhhh", "read lines", "A {h2}, B {h2}, C {h2}"},
    {'@', "DO*", "!AA", "set lines A {h2}, B {h2}, C {h2}"},
    {'@', "SO*", "!AA", "switch line {c2} {off|on}"},
    {'@', "*", "!AA"},
};

constexpr CommandForm Counters[] = {
    {'#', "n", ">hhhhhhhh", "read channel {x}", "{F}"},
    {'$', "B", "!AAb", "read input mode", "{TTL|photo isolated}"},
    {'$', "A", "!AAt", "read gate mode", "{low|high|disabled}"},
    {'$', "5", "!AAbb", "read which counters run",
     "counter 0: {stopped|started}, counter 1: {stopped|started}"},
    {'$', "7", "!AAbb", "read overflow", "counter 0: {no|yes}, counter 1: {no|yes}"},
    {'$', "3", "!AAhhhhhhhh", "read maximum of counter 0", "{c8}"},
    {'@', "G", "!AAhhhhhhhh", "read maximum of counter 1", "{c8}"},
    {'$', "4", "!AAb", "read digital filter", "{disabled|enabled}"},
    {'$', "0H", "!AAdddd", "read minimum width at high level", "{d4} us"},
    {'$', "0L", "!AAdddd", "read minimum width at low level", "{d4} us"},
    {'$', "1H", "!AAdd", "read high trigger level", "{v2} V"},
    {'$', "1L", "!AAdd", "read low trigger level", "{v2} V"},
    {'@', "DI", "!AAbbzq", "read alarms",
     "alarm 0 {disabled|enabled}, alarm 1 {disabled|enabled}, active: {m2}"},
    {'@', "RP", "!AAhhhhhhhhhhhhhhhh", "read initial counts", OfBothCounts},
    {'@', "RA", "!AAhhhhhhhhhhhhhhhh", "read alarm limits", OfBothCounts},
    // settings
    {'$', "B*", "!AA", "set input mode {TTL|photo isolated}"},
    {'$', "A*", "!AA", "set gate mode {low|high|disabled}"},
    {'$', "5n*", "!AA", "counter {x}: {stop|start}"},
    {'$', "6n", "!AA", "clear counter {x}"},
    {'$', "3n*", "!AA", "set maximum of counter {x} to {c8}"},
    {'@', "PA*", "!AA", "set alarm limit of counter 0 to {c8}"},
    {'@', "Pn*", "!AA", "set initial count of counter {x} to {c8}"},
    {'@', "P*", "!AA"},
    {'@', "SA*", "!AA", "set alarm limit of counter 1 to {c8}"},
    {'$', "4*", "!AA", "{disable|enable} digital filter"},
    {'$', "0H*", "!AA", "set minimum width at high level to {d4} us"},
    {'$', "0L*", "!AA", "set minimum width at low level to {d4} us"},
    {'$', "1H*", "!AA", "set high trigger level to {v2} V"},
    {'$', "1L*", "!AA", "set low trigger level to {v2} V"},
    {'@', "EAn", "!AA", "enable alarm of counter {x}"},
    {'@', "DAn", "!AA", "disable alarm of counter {x}"},
};

constexpr CommandForm Converters[] = {
    {'$', "2", "!AAhhhhhhhh", "read configuration", "{M}{Q}"},
    {'%', "*", "!AA", "set {A}{Q}"},
};

constexpr std::array<std::span<const CommandForm>, 9> Tables = {AlarmInputs,    MultiInputs,    SingleOutput,
                                                                VoltageOutputs, DigitalModules, PortModule,
                                                                Counters,       Converters,     EveryModel};

} // namespace

std::span<const CommandForm> CommonCommands() {
    return EveryModel;
}

std::span<const std::span<const CommandForm>> AllCommands() {
    return Tables;
}

std::span<const CommandForm> CommandsOf(std::string_view model) {
    switch (RowOfModel(model).Kind) {
    case ModelKind::DigitalLines:
        return DigitalModules;
    case ModelKind::PortLines:
        return PortModule;
    case ModelKind::AlarmInput:
        return AlarmInputs;
    case ModelKind::MultiInput:
        return MultiInputs;
    case ModelKind::SingleOutput:
        return SingleOutput;
    case ModelKind::PortOutputs:
        return VoltageOutputs;
    case ModelKind::Counting:
        return Counters;
    case ModelKind::Converting:
        return Converters;
    default:
        return {};
    }
}

} // namespace kavro
