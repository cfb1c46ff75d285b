#include "cli/line_control.h"

#include "link/entered_values.h"
#include "link/printable.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "sim/module_factory.h"

#include <algorithm>
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

Lines PutOff(SimulatedLine& line, const std::string& name) {
    Named(line, name).PowerDown();
    return {"ok"};
}

template <PowerOn State>
Lines PutOn(SimulatedLine& line, const std::string& name) {
    Named(line, name).PowerUp(State);
    return {"ok"};
}

Lines AddNew(SimulatedLine& line, const std::string& model) {
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

Lines List(SimulatedLine& line, const std::string& /*name*/) {
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
    std::size_t Names; // words that follow
    Lines (*Do)(SimulatedLine& line, const std::string& name);
};

constexpr ControlCommand ControlCommands[] = {
    {"off", 1, PutOff},
    {"on", 1, PutOn<PowerOn::Normal>},
    {"init", 1, PutOn<PowerOn::Initialising>},
    {"new", 1, AddNew},
    {"list", 0, List},
};

Lines Words(std::string_view text) {
    std::istringstream words{std::string(text)};
    return {std::istream_iterator<std::string>(words), {}};
}

Lines Do(SimulatedLine& line, std::string_view text) {
    const Lines words = Words(text);
    for (const ControlCommand& command : ControlCommands)
        if (words.size() == 1 + command.Names && words.front() == command.Word)
            return command.Do(line, words.back());
    throw RuntimeFailure("\"" + std::string(text) +
                         "\" is not understood; there are off, on and init with an address or #number, new "
                         "with a model, and list.");
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
