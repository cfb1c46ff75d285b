#include "sim/port_module.h"

#include "sim/moving_levels.h"
#include "sim/wire_text.h"

namespace kavro {

namespace {

constexpr int Lines = 24;
constexpr unsigned PortLines[] = {0x00000F, 0x0000F0, 0x00FF00, 0xFF0000}; // by direction bit: CL, CH, B, A
constexpr unsigned AllPorts = 0x0F;

} // namespace

std::optional<std::string> PortModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = PortModule;
    static constexpr CommandEntry<Self> Commands[] = {
        // There is no polarity to set, but it can be read as of any digital module.
        {"~AACR", [](Self& module, const Request&) { return module.Valid("00"); }},
        {"$AA6",
         [](Self& module, const Request&) {
             return module.ValidUnaddressed(WireHex(module.Directions, 2) + "00");
         }},
        {"$AAShh", [](Self& module, const Request& request) { return module.SetDirections(request); }},
        {"$AA8", [](Self& module, const Request& request) { return module.ReadLevels(request); }},
        {"@AADOhhhhhh", [](Self& module, const Request& request) { return module.SetOutputs(request); }},
        {"@AASOhhd", [](Self& module, const Request& request) { return module.SetOutput(request); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

unsigned PortModule::InputLines() const {
    unsigned lines = 0;
    for (unsigned port = 0; port < std::size(PortLines); ++port)
        if ((Directions >> port & 1U) != 0)
            lines |= PortLines[port];
    return lines;
}

std::string PortModule::SetDirections(const Request& request) {
    const unsigned directions = FromWireHex(request.Arguments);
    if (directions > AllPorts)
        return Refusal();
    Directions = directions;
    return Valid();
}

std::string PortModule::ReadLevels(const Request& request) const {
    const unsigned levels = HeldInputs.value_or(MovingLevels(request.Moment, Settings.Address, Lines));
    const unsigned inputs = InputLines();
    return ValidUnaddressed(WireHex((levels & inputs) | (Commanded & ~inputs), 6));
}

std::string PortModule::SetOutputs(const Request& request) {
    const unsigned inputs = InputLines();
    Commanded = (Commanded & inputs) | (FromWireHex(request.Arguments) & ~inputs);
    return Valid();
}

std::string PortModule::SetOutput(const Request& request) {
    const auto line = FromWireHex(std::string_view(request.Arguments).substr(0, 2));
    const char state = request.Arguments[2];
    if (line >= Lines || (InputLines() >> line & 1U) != 0 || state > '1')
        return Refusal();
    const unsigned bit = 1U << line;
    Commanded = state == '1' ? Commanded | bit : Commanded & ~bit;
    return Valid();
}

} // namespace kavro
