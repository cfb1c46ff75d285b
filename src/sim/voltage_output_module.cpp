#include "sim/voltage_output_module.h"

#include "sim/moving_levels.h"
#include "sim/readings.h"
#include "sim/wire_text.h"

#include <cmath>

namespace kavro {

namespace {

constexpr int Inputs = 7;
constexpr double HighestVoltage = 10;
constexpr double TrimStep = 0.005; // V, about one step of a 12-bit converter

// Of the letters that "h" stands for, A to D are ports; a digit and the others give nothing.
std::optional<std::size_t> PortOf(char letter) {
    if (letter < 'A' || letter > 'D')
        return std::nullopt;
    return static_cast<std::size_t>(letter - 'A');
}

} // namespace

std::optional<std::string> VoltageOutputModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = VoltageOutputModule;
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AAhnnnnnnn", [](Self& module, const Request& request) { return module.Drive(request); }},
        {"$AA6h", [](Self& module, const Request& request) { return module.ReadOutput(request); }},
        {"$AA8", [](Self& module, const Request& request) { return module.ReadInputs(request); }},
        {"~AACR",
         [](Self& module, const Request&) { return module.Valid(WireDecimal(module.InputInverted, 2)); }},
        {"~AACPdd", [](Self& module, const Request& request) { return module.SetPolarity(request); }},
        {"$AA3hh", [](Self& module, const Request& request) { return module.Trim(request); }},
        {"$AA0", [](Self& module, const Request&) { return module.StoreTrim(); }},
        {"$AA1", [](Self& module, const Request&) { return module.StoreTrim(); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

void VoltageOutputModule::Forget() {
    outputs_ = {};
    trim_ = 0;
}

void VoltageOutputModule::KeepFormat(int bits) {
    AnalogModule::KeepFormat(bits);
    trim_ = 0;
}

std::string VoltageOutputModule::Drive(const Request& request) {
    const auto port = PortOf(request.Arguments.front());
    const auto voltage = FromSignedText(std::string_view(request.Arguments).substr(1), 2, 3);
    if (!port || !voltage || std::fabs(*voltage) > HighestVoltage)
        return Refusal();
    outputs_[*port] = *voltage;
    if (*port == 0)
        trim_ = 0;
    return Data({});
}

std::string VoltageOutputModule::ReadOutput(const Request& request) const {
    const auto port = PortOf(request.Arguments.front());
    return port ? Valid(WireSigned(outputs_[*port], 2, 3)) : Refusal();
}

std::string VoltageOutputModule::ReadInputs(const Request& request) const {
    const unsigned levels = HeldInputs.value_or(MovingLevels(request.Moment, Settings.Address, Inputs));
    const unsigned inputs = (InputInverted ? ~levels : levels) & ((1U << Inputs) - 1);
    return ValidUnaddressed(WireHex(inputs, 2) + "0000");
}

std::string VoltageOutputModule::SetPolarity(const Request& request) {
    if (request.Arguments != "00" && request.Arguments != "01")
        return Refusal();
    InputInverted = request.Arguments == "01";
    return Valid();
}

std::string VoltageOutputModule::Trim(const Request& request) {
    trim_ += TrimCount(request.Arguments) * TrimStep;
    return Valid();
}

std::string VoltageOutputModule::StoreTrim() {
    ErrorOfPortA += trim_;
    trim_ = 0;
    return Valid();
}

} // namespace kavro
