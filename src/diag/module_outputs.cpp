#include "diag/module_outputs.h"

#include "diag/alarm_panel.h"
#include "diag/analog_output_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/models.h"
#include "link/text.h"
#include "map/module_access.h"

#include <charconv>
#include <cmath>

namespace kavro {

namespace {

constexpr int StepsPerUnit = 1000; // the data has three decimals

// An analog output of a module.
struct AnalogBounds {
    double Low, High;
    std::string Unit;
};

double ParseValue(const std::string& text, const AnalogBounds& bounds) {
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    // The comparison is false for what is not a number, too.
    if (error != std::errc() || stop != end || !(value >= bounds.Low && value <= bounds.High))
        throw RuntimeFailure("'" + text + "' is not possible; give " + FormatNumber(bounds.Low, 1, 0) +
                             " to " + FormatNumber(bounds.High, 1, 0) + " " + bounds.Unit +
                             ", with a decimal point.");
    return value;
}

bool ParseSwitch(const std::string& text) {
    for (const char* name : {"on", "1"})
        if (SameText(text, name))
            return true;
    for (const char* name : {"off", "0"})
        if (SameText(text, name))
            return false;
    throw RuntimeFailure("'" + text + "' is not possible; give on or off.");
}

constexpr std::size_t CommandHead = 3; // "#AA"

// The command of an analog output.
Drive AnalogDrive(Session& session, int index, const std::string& command) {
    return [&session, index, tail = command.substr(CommandHead)] {
        return TellModule(session, index, '#', tail) == Answer::Ok;
    };
}

std::vector<NamedOutput> SingleOutput(Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const double low = OutputValue(record.InputRange, {0, 1});
    const AnalogBounds bounds = {low, OutputValue(record.InputRange, {1, 1}),
                                 Trim(RangeUnit(record.InputRange, EngineeringUnits))};
    if (bounds.High <= bounds.Low)
        return {};
    return {{"", [&session, index, bounds](const std::string& text) {
                 const double value = ParseValue(text, bounds);
                 const BarPosition bar = {
                     static_cast<int>(std::lround((value - bounds.Low) * StepsPerUnit)),
                     static_cast<int>(std::lround((bounds.High - bounds.Low) * StepsPerUnit))};
                 return AnalogDrive(
                     session, index,
                     OutputCommand(AddressText(session, index), session.ModuleTable[index], bar));
             }}};
}

std::vector<NamedOutput> VoltagePorts(Session& session, int index) {
    const AnalogBounds bounds = {-10, 10, "V"};
    std::vector<NamedOutput> outputs;
    outputs.reserve(OutputPorts);
    for (int port = 0; port < OutputPorts; ++port)
        outputs.push_back({std::string(1, static_cast<char>('A' + port)),
                           [&session, index, port, bounds](const std::string& text) {
                               // Rounded here, so that what rounds to 0 has no sign "-".
                               const double value = std::round(ParseValue(text, bounds) * StepsPerUnit);
                               return AnalogDrive(session, index,
                                                  PortCommand(AddressText(session, index), port,
                                                              static_cast<float>(value / StepsPerUnit)));
                           }});
    return outputs;
}

using Switch = Answer (*)(Session& session, int index, int output, bool on);

NamedOutput SwitchedOutput(Session& session, int index, const std::string& name, int output,
                           Switch switchOutput) {
    return {name, [&session, index, output, switchOutput](const std::string& text) -> Drive {
                return [&session, index, output, switchOutput, on = ParseSwitch(text)] {
                    return switchOutput(session, index, output, on) == Answer::Ok;
                };
            }};
}

// The outputs as a word, given as on, off, or as all of its `digits`.
NamedOutput WholeWord(Session& session, int index, unsigned all, std::int16_t digits) {
    return {"all", [&session, index, all, digits](const std::string& text) -> Drive {
                std::optional<unsigned> word;
                if (SameText(text, "on") || SameText(text, "off"))
                    word = SameText(text, "on") ? all : 0;
                else if (text.size() == static_cast<std::size_t>(digits))
                    word = HexNumber(text);
                const std::string most = ToHex(static_cast<std::int32_t>(all), digits);
                if (!word || *word > all)
                    throw RuntimeFailure("'" + text + "' is not possible; give on, off, or " +
                                         std::to_string(digits) + " hexadecimal digits, at most " + most +
                                         ".");
                return [&session, index, tail = "DO" + ToHex(static_cast<std::int32_t>(*word), digits)] {
                    return TellModule(session, index, '@', tail) == Answer::Ok;
                };
            }};
}

// Outputs named by their numbers, and "all".
std::vector<NamedOutput> NumberedOutputs(Session& session, int index, int count, std::int16_t digits,
                                         Switch switchOutput) {
    std::vector<NamedOutput> outputs;
    outputs.reserve(static_cast<std::size_t>(count) + 1);
    for (int output = 0; output < count; ++output)
        outputs.push_back(SwitchedOutput(session, index, std::to_string(output), output, switchOutput));
    if (count > 0)
        outputs.push_back(WholeWord(session, index, (1U << count) - 1, digits));
    return outputs;
}

// The lines of the ports that are outputs.
std::optional<std::vector<NamedOutput>> PortLines(Session& session, int index) {
    unsigned directions = 0;
    if (ReadPortDirections(session, index, directions) != Answer::Ok)
        return std::nullopt;
    std::vector<NamedOutput> outputs;
    for (const DigitalPort& port : DigitalPorts)
        for (int line = 0; line < port.Lines && (directions & port.DirectionMask) == 0; ++line)
            outputs.push_back(SwitchedOutput(session, index, port.Name + std::to_string(line),
                                             port.FirstLine + line, SwitchOutput));
    if (!outputs.empty())
        outputs.push_back(WholeWord(session, index, AllPortLines, 6));
    return outputs;
}

} // namespace

std::optional<std::vector<NamedOutput>> OutputsOf(Session& session) {
    const int index = session.SelectedModule;
    const std::string model = session.ModuleTable[index].Model;
    switch (RowOfModel(model).Kind) {
    case ModelKind::SingleOutput:
        return SingleOutput(session, index);
    case ModelKind::PortOutputs:
        return VoltagePorts(session, index);
    case ModelKind::PortLines:
        return PortLines(session, index);
    case ModelKind::AlarmInput:
        return NumberedOutputs(session, index, AlarmOutputTotal, 2, SwitchAlarmOutput);
    default:
        return NumberedOutputs(session, index, DigitalChannelsOf(model).Outputs, 4, SwitchOutput);
    }
}

} // namespace kavro
