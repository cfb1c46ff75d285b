#include "cli/line_control.h"

#include "link/entered_values.h"
#include "link/printable.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "sim/alarm_input_module.h"
#include "sim/digital_module.h"
#include "sim/module_factory.h"
#include "sim/port_module.h"
#include "sim/voltage_output_module.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <sstream>
#include <utility>

namespace kavro {

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t LongestLine = 200;

std::string Numbered(std::size_t number) {
    return "#" + std::to_string(number);
}

// The only module with that own address.
std::size_t NumberAt(const SimulatedLine& line, const std::string& text) {
    const int address = ParseAddress(text);
    Lines found;
    std::size_t number = 0;
    for (std::size_t i = 0; i < line.Modules().size(); ++i)
        if (line.Modules()[i]->Settings.Address == address) {
            number = i;
            found.push_back(Numbered(i));
        }
    if (found.empty())
        throw RuntimeFailure("No module has the address " + text + ". See list.");
    if (found.size() > 1)
        throw RuntimeFailure("These have the address " + text + ": " + Listed(found) +
                             ". Name one by its number.");
    return number;
}

SimulatedModule& Named(const SimulatedLine& line, const std::string& name) {
    if (!name.starts_with('#'))
        return *line.Modules()[NumberAt(line, name)];
    const auto number = CappedNumber(std::string_view(name).substr(1));
    if (!number || static_cast<std::size_t>(*number) >= line.Modules().size())
        throw RuntimeFailure("No module has the number " + name + ". See list.");
    return *line.Modules()[static_cast<std::size_t>(*number)];
}

Lines PutOff(SimulatedLine& line, const Lines& given) {
    Named(line, given.front()).PowerDown();
    return {"ok"};
}

template <PowerOn State>
Lines PutOn(SimulatedLine& line, const Lines& given) {
    Named(line, given.front()).PowerUp(State);
    return {"ok"};
}

double Value(const std::string& text) {
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    if (error != std::errc() || stop != end)
        throw RuntimeFailure("'" + text + "' is no value; give a number, with a decimal point.");
    return value;
}

Lines HoldSignal(SimulatedLine& line, const Lines& given) {
    auto* const input = dynamic_cast<CalibratedInput*>(&Named(line, given.front()));
    if (!input)
        throw RuntimeFailure("Module " + given.front() + " has no analog inputs.");
    input->HeldSignal = given.size() > 1 ? std::optional(Value(given[1])) : std::nullopt;
    return {"ok"};
}

template <class... Models>
std::optional<unsigned>* HeldInputsOf(SimulatedModule& module) {
    std::optional<unsigned>* held = nullptr;
    const auto look = [&](auto* model) { held = model ? &model->HeldInputs : held; };
    (look(dynamic_cast<Models*>(&module)), ...);
    return held;
}

Lines HoldLevels(SimulatedLine& line, const Lines& given) {
    SimulatedModule& module = Named(line, given.front());
    auto* const held = HeldInputsOf<DigitalModule, PortModule, AlarmInputModule, VoltageOutputModule>(module);
    if (!held)
        throw RuntimeFailure("Module " + given.front() + " has no digital inputs.");
    const auto word = HexNumber(given.back());
    if (given.size() > 1 && !word)
        throw RuntimeFailure("'" + given[1] + "' is no word of levels; give 1 to 8 hexadecimal digits.");
    *held = given.size() > 1 ? word : std::nullopt;
    return {"ok"};
}

Lines AddNew(SimulatedLine& line, const Lines& given) {
    const std::string& model = given.front();
    if (!IsSimulatedModel(model))
        throw RuntimeFailure("There is no model " + model + "; give one such as 8250.");
    line.Add(MakeModule(FactorySettings(model))).PowerUp(PowerOn::Initialising);
    return {"ok " + Numbered(line.Modules().size() - 1)};
}

const char* StateOf(const SimulatedModule& module) {
    if (!module.Powered())
        return "off";
    return module.Settings.Initialisation ? "init" : "on";
}

Lines List(SimulatedLine& line, const Lines& /*given*/) {
    Lines lines;
    for (const auto& module : line.Modules()) {
        const ModuleSettings& settings = module->Settings;
        lines.push_back(Numbered(lines.size()) + " address " + std::to_string(settings.Address) + ", " +
                        std::to_string(settings.Baud) + " baud, " +
                        (settings.Checksum ? "checksum, " : "no checksum, ") + StateOf(*module) + ": " +
                        settings.Model);
    }
    lines.emplace_back("ok");
    return lines;
}

struct ControlCommand {
    std::string_view Word;
    std::size_t Least, Most; // words that follow
    Lines (*Do)(SimulatedLine& line, const Lines& given);
};

constexpr ControlCommand ControlCommands[] = {
    {"off", 1, 1, PutOff},
    {"on", 1, 1, PutOn<PowerOn::Normal>},
    {"init", 1, 1, PutOn<PowerOn::Initialising>},
    {"signal", 1, 2, HoldSignal},
    {"level", 1, 2, HoldLevels},
    {"new", 1, 1, AddNew},
    {"list", 0, 0, List},
};

Lines Words(std::string_view text) {
    std::istringstream words{std::string(text)};
    return {std::istream_iterator<std::string>(words), {}};
}

Lines Do(SimulatedLine& line, std::string_view text) {
    const Lines words = Words(text);
    for (const ControlCommand& command : ControlCommands)
        if (words.size() > command.Least && words.size() <= 1 + command.Most && words.front() == command.Word)
            return command.Do(line, {words.begin() + 1, words.end()});
    throw RuntimeFailure(
        "\"" + std::string(text) +
        "\" is not understood; there are off, on and init with an address or #number, signal "
        "and level with the same and what is held, new with a model, and list.");
}

} // namespace

std::vector<std::string> ControlAnswer(SimulatedLine& line, std::string_view command) {
    try {
        if (command.size() > LongestLine)
            throw RuntimeFailure("The line is too long.");
        return Do(line, command);
    } catch (const RuntimeFailure& failure) {
        return {"error: " + Printable(failure.what())};
    }
}

std::vector<std::string> LineControl::Take(std::string_view text) {
    Lines answers;
    const auto carryOut = [&] {
        std::ranges::move(ControlAnswer(line_, std::exchange(begun_, {})), std::back_inserter(answers));
    };
    for (const char character : text) {
        if (character == '\n')
            carryOut();
        else if (begun_.size() <= LongestLine)
            begun_ += character;
    }
    if (text.empty() && !begun_.empty())
        carryOut();
    return answers;
}

} // namespace kavro
