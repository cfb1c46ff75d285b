#include "diag/module_outputs.h"

#include "diag/alarm_panel.h"
#include "diag/digital_panel.h"
#include "diag/port_panel.h"
#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/models.h"
#include "link/text.h"
#include "map/module_access.h"

#include <utility>

namespace kavro {

namespace {

constexpr int FirstAlarmOutputChannel = 1; // behind the analog input

double ParseValue(const std::string& text, const OutputBounds& bounds) {
    if (const auto value = ParseOutput(text, bounds))
        return *value;
    throw RuntimeFailure("'" + text + "' is not possible; give " + FormatNumber(bounds.Low, 1, 0) + " to " +
                         FormatNumber(bounds.High, 1, 0) + " " + bounds.Unit + ", with a decimal point.");
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

// An output that is read, and can be planned to be what it is read as.
NamedOutput WithRead(NamedOutput output, std::function<std::optional<ToldOutput>()> read) {
    output.ReadAny = read;
    output.Read = [read = std::move(read)]() -> std::optional<std::string> {
        const auto told = read();
        return told && !told->Outside ? std::optional(told->Value) : std::nullopt;
    };
    return output;
}

std::vector<NamedOutput> SingleOutput(Session& session, int index) {
    const OutputBounds bounds = SingleOutputBounds(session.ModuleTable[index]);
    if (bounds.High <= bounds.Low)
        return {};
    const auto plan = [&session, index, bounds](const std::string& text) {
        return AnalogDrive(session, index,
                           OutputCommand(AddressText(session, index), session.ModuleTable[index],
                                         BarOf(ParseValue(text, bounds), bounds)));
    };
    return {WithRead({.Name = {},
                      .Channel = 0,
                      .Digital = false,
                      .Low = bounds.Low,
                      .High = bounds.High,
                      .Unit = bounds.Unit,
                      .Plan = plan,
                      .Read = {}},
                     [&session, index] { return ReadSingleOutput(session, index); })};
}

NamedOutput VoltagePort(Session& session, int index, int port) {
    const auto plan = [&session, index, port](const std::string& text) {
        // To its thousandth, so that what rounds to 0 has no sign "-".
        const BarPosition bar = BarOf(ParseValue(text, PortBounds), PortBounds);
        return AnalogDrive(session, index, PortCommand(AddressText(session, index), port, PortValue(bar)));
    };
    return WithRead({.Name = std::string(1, static_cast<char>('A' + port)),
                     .Channel = port,
                     .Digital = false,
                     .Low = PortBounds.Low,
                     .High = PortBounds.High,
                     .Unit = PortBounds.Unit,
                     .Plan = plan,
                     .Read = {}},
                    [&session, index, port] { return ReadPort(session, index, port); });
}

std::vector<NamedOutput> VoltagePorts(Session& session, int index) {
    std::vector<NamedOutput> outputs;
    outputs.reserve(OutputPorts);
    for (int port = 0; port < OutputPorts; ++port)
        outputs.push_back(VoltagePort(session, index, port));
    return outputs;
}

// How the digital outputs of a kind of model are switched one by one, and read as a word with a bit each.
struct DigitalSide {
    Answer (*Switch)(Session& session, int index, int output, bool on);
    Answer (*Read)(Session& session, int index, unsigned& outputs);
    std::int16_t Digits; // of the word
    int FirstChannel;    // of output 0
};

std::optional<unsigned> ReadWord(Session& session, int index, const DigitalSide& side) {
    unsigned outputs = 0;
    return side.Read(session, index, outputs) == Answer::Ok ? std::optional(outputs) : std::nullopt;
}

NamedOutput SwitchedOutput(Session& session, int index, const std::string& name, int output,
                           const DigitalSide& side) {
    return {.Name = name,
            .Channel = side.FirstChannel + output,
            .Plan = [&session, index, output, side](const std::string& text) -> Drive {
                return [&session, index, output, side, on = ParseSwitch(text)] {
                    return side.Switch(session, index, output, on) == Answer::Ok;
                };
            },
            .Read = [&session, index, output, side]() -> std::optional<std::string> {
                const auto outputs = ReadWord(session, index, side);
                if (!outputs)
                    return std::nullopt;
                return (*outputs >> output & 1U) != 0 ? "on" : "off";
            }};
}

// A word of the outputs, given as on, off, or as all of its digits.
unsigned ParseWord(const std::string& text, unsigned all, std::int16_t digits) {
    std::optional<unsigned> word;
    if (SameText(text, "on") || SameText(text, "off"))
        word = SameText(text, "on") ? all : 0;
    else if (text.size() == static_cast<std::size_t>(digits))
        word = HexNumber(text);
    if (word && *word <= all)
        return *word;
    throw RuntimeFailure("'" + text + "' is not possible; give on, off, or " + std::to_string(digits) +
                         " hexadecimal digits, at most " + ToHex(static_cast<std::int32_t>(all), digits) +
                         ".");
}

// All of them at once; `lines` are those that are outputs among `all` that can be given.
NamedOutput WholeWord(Session& session, int index, unsigned all, unsigned lines, const DigitalSide& side) {
    return {.Name = "all",
            .Plan = [&session, index, all, digits = side.Digits](const std::string& text) -> Drive {
                const unsigned word = ParseWord(text, all, digits);
                return [&session, index, tail = "DO" + ToHex(static_cast<std::int32_t>(word), digits)] {
                    return TellModule(session, index, '@', tail) == Answer::Ok;
                };
            },
            .Read = [&session, index, lines, side]() -> std::optional<std::string> {
                const auto outputs = ReadWord(session, index, side);
                if (!outputs)
                    return std::nullopt;
                return ToHex(static_cast<std::int32_t>(*outputs & lines), side.Digits);
            }};
}

// Outputs named by their numbers, and "all".
std::vector<NamedOutput> NumberedOutputs(Session& session, int index, int count, const DigitalSide& side) {
    std::vector<NamedOutput> outputs;
    outputs.reserve(static_cast<std::size_t>(count) + 1);
    for (int output = 0; output < count; ++output)
        outputs.push_back(SwitchedOutput(session, index, std::to_string(output), output, side));
    const unsigned all = (1U << count) - 1;
    if (count > 0)
        outputs.push_back(WholeWord(session, index, all, all, side));
    return outputs;
}

Answer ReadAlarmOutputs(Session& session, int index, unsigned& outputs) {
    AlarmStates states;
    const Answer answer = ReadAlarmStates(session, index, states);
    outputs = states.Outputs;
    return answer;
}

Answer ReadDigitalOutputs(Session& session, int index, unsigned& outputs) {
    DigitalStates states;
    const Answer answer = ReadDigitalStates(session, index, states);
    outputs = states.Outputs;
    return answer;
}

// The lines of the ports that are outputs.
std::optional<std::vector<NamedOutput>> PortLines(Session& session, int index) {
    constexpr DigitalSide side = {SwitchOutput, ReadPortLevels, 6, 0};
    unsigned directions = 0;
    if (ReadPortDirections(session, index, directions) != Answer::Ok)
        return std::nullopt;
    std::vector<NamedOutput> outputs;
    unsigned lines = 0;
    for (const DigitalPort& port : DigitalPorts) {
        if ((directions & port.DirectionMask) != 0)
            continue;
        lines |= port.Word();
        for (int line = 0; line < port.Lines; ++line)
            outputs.push_back(SwitchedOutput(session, index, port.Name + std::to_string(line),
                                             port.FirstLine + line, side));
    }
    if (!outputs.empty())
        outputs.push_back(WholeWord(session, index, AllPortLines, lines, side));
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
        return NumberedOutputs(session, index, AlarmOutputTotal,
                               {SwitchAlarmOutput, ReadAlarmOutputs, 2, FirstAlarmOutputChannel});
    default: { // the outputs come behind the inputs
        const DigitalChannels channels = DigitalChannelsOf(model);
        return NumberedOutputs(session, index, channels.Outputs,
                               {SwitchOutput, ReadDigitalOutputs, 4, channels.Inputs});
    }
    }
}

std::optional<ToldOutput> ReadTold(const NamedOutput& output) {
    if (output.ReadAny)
        return output.ReadAny();
    const auto told = output.Read();
    return told ? std::optional(ToldOutput{*told}) : std::nullopt;
}

} // namespace kavro
