#include "sim/simulated_module.h"

#include "link/runtime_failure.h"
#include "sim/wire_text.h"

namespace kavro {

namespace {

constexpr std::string_view CommandLeads = "$#@~%";
constexpr std::size_t HeadLength = 3; // leading character and address
constexpr int InitialisationBaud = 9600;

bool IsArgument(char place, char character) {
    const bool digit = character >= '0' && character <= '9';
    const bool letter = character >= 'A' && character <= 'F';
    const bool mark = character == '+' || character == '-' || character == '.';
    return digit || (place == 'h' && letter) || (place == 'n' && mark);
}

std::string Reply(char replyClass, const std::string& text) {
    std::string reply(1, replyClass);
    return reply.append(text);
}

} // namespace

std::optional<std::string> MatchCommand(std::string_view pattern, std::string_view command) {
    if (pattern.size() != command.size() || pattern.front() != command.front())
        return std::nullopt;
    std::string arguments;
    for (std::size_t i = HeadLength; i < pattern.size(); ++i) {
        const bool argument = pattern[i] == 'd' || pattern[i] == 'h' || pattern[i] == 'n';
        if (argument ? !IsArgument(pattern[i], command[i]) : pattern[i] != command[i])
            return std::nullopt;
        if (argument)
            arguments += command[i];
    }
    return arguments;
}

SimulatedModule::SimulatedModule(ModuleSettings settings) : Settings(std::move(settings)) {
    if (Settings.Address < 0 || Settings.Address > 255)
        throw RuntimeFailure("A simulated module cannot have the address " +
                             std::to_string(Settings.Address) + "; give one from 0 to 255.");
    if (!WireBaudCode(Settings.Baud))
        throw RuntimeFailure("A simulated module cannot have the baud rate " + std::to_string(Settings.Baud) +
                             "; give 1200, 2400, 4800, 9600, 19200, 38400, 57600 or 115200.");
}

Faults SimulatedModule::FaultsAt(std::string_view command) const {
    return CommandFaults ? Combined(OwnFaults, CommandFaults(command)) : OwnFaults;
}

void SimulatedModule::PowerDown() {
    powered_ = false;
    Forget();
}

void SimulatedModule::PowerUp(PowerOn state) {
    PowerDown();
    powered_ = true;
    Settings.Initialisation = state == PowerOn::Initialising;
}

std::optional<std::string> SimulatedModule::Hear(std::string_view line, int baud, std::int64_t moment,
                                                 const Faults& faults) {
    if (!powered_ || faults.Silent || faults.Unplugged)
        return std::nullopt;
    if (baud != (Settings.Initialisation ? InitialisationBaud : Settings.Baud))
        return std::nullopt;

    const bool checksum = Settings.Checksum && !Settings.Initialisation;
    if (checksum) {
        if (line.size() < 2)
            return std::nullopt;
        const std::string_view text = line.substr(0, line.size() - 2);
        if (line.substr(text.size()) != WireHex(WireSum(text), 2))
            return std::nullopt;
        line = text;
    }
    if (line.size() < HeadLength || CommandLeads.find(line.front()) == std::string_view::npos)
        return std::nullopt;
    const int spokenAddress = Settings.Initialisation ? 0 : Settings.Address;
    if (line.substr(1, 2) != WireHex(static_cast<std::uint32_t>(spokenAddress), 2))
        return std::nullopt;

    wrongAddress_ = faults.WrongAddress;
    std::string reply = faults.Refuse ? Refusal() : Answer(line, moment);
    if (checksum)
        reply += WireHex(WireSum(reply) + (faults.WrongChecksum ? 1U : 0U), 2);
    return reply;
}

std::string SimulatedModule::Answer(std::string_view command, std::int64_t moment) {
    static constexpr CommandEntry<SimulatedModule> Commands[] = {
        {"$AA2",
         [](SimulatedModule& module, const Request&) { return module.Valid(module.ConfigurationText()); }},
        {"$AAM", [](SimulatedModule& module, const Request&) { return module.Valid(module.Settings.Model); }},
        {"$AAF",
         [](SimulatedModule& module, const Request&) { return module.Valid(module.Settings.Revision); }},
        {"%AAhhhhhhhh",
         [](SimulatedModule& module, const Request& request) { return module.Configure(request.Arguments); }},
    };
    if (const auto own = AnswerOwn(command, moment))
        return *own;
    if (const auto common = AnswerFrom(Commands, *this, command, moment))
        return *common;
    return Refusal();
}

std::string SimulatedModule::Valid(const std::string& data) const {
    return Reply('!', AddressText() + data);
}

std::string SimulatedModule::ValidUnaddressed(const std::string& data) const {
    return Reply('!', data);
}

std::string SimulatedModule::Refusal() const {
    return Reply('?', AddressText());
}

std::string SimulatedModule::Data(const std::string& text) const {
    return Reply('>', text);
}

std::string SimulatedModule::AddressText() const {
    return WireHex(static_cast<std::uint32_t>(Settings.Address) + (wrongAddress_ ? 1U : 0U), 2);
}

// `digits`: new address, type code, baud code and format byte, two digits each.
std::string SimulatedModule::Configure(std::string_view digits) {
    const auto field = [&](std::size_t start) {
        return static_cast<int>(FromWireHex(digits.substr(start, 2)));
    };
    const int typeCode = field(2);
    const auto baud = FromWireBaudCode(field(4));
    const int format = field(6);
    const int formatBits = format & ~ChecksumMask;
    if (!HasTypeCode(typeCode) || !MaySetBaud(baud, Settings.Baud) || !HasFormat(formatBits))
        return Refusal();
    Settings.Address = field(0);
    Settings.TypeCode = typeCode;
    Settings.Baud = *baud;
    KeepFormat(formatBits);
    KeepChecksum((format & ChecksumMask) != 0);
    return Valid();
}

bool SimulatedModule::HasTypeCode(int typeCode) const {
    return typeCode == Settings.TypeCode;
}

bool SimulatedModule::HasFormat(int bits) const {
    return bits == 0;
}

void SimulatedModule::KeepFormat(int /*bits*/) {}

bool SimulatedModule::MaySetBaud(std::optional<int> baud, int present) const {
    return baud && (Settings.Initialisation || *baud == present);
}

void SimulatedModule::KeepChecksum(bool checksum) {
    if (Settings.Initialisation)
        Settings.Checksum = checksum;
}

std::optional<std::string> SimulatedModule::AnswerOwn(std::string_view /*command*/, std::int64_t /*moment*/) {
    return std::nullopt;
}

std::string SimulatedModule::ConfigurationText() const {
    return WireHex(static_cast<std::uint32_t>(Settings.TypeCode), 2) +
           WireHex(static_cast<std::uint32_t>(BaudCodeNumber()), 2) +
           WireHex(static_cast<std::uint32_t>(FormatByte()), 2);
}

int SimulatedModule::FormatByte() const {
    return ChecksumBit();
}

int SimulatedModule::BaudCodeNumber() const {
    return WireBaudCode(Settings.Baud).value_or(0);
}

} // namespace kavro
