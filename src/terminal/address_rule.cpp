#include "terminal/address_rule.h"

#include "link/text.h"

namespace kavro {

namespace {

constexpr std::int16_t DefaultBaudCode = 3; // 9600

} // namespace

std::optional<std::int16_t> CommandAddress(const std::string& command) {
    const auto address = HexNumber(Middle(command, 2, 2));
    if (!address)
        return std::nullopt;
    return static_cast<std::int16_t>(*address);
}

std::int16_t TerminalAddressBaud(const Session& session, const std::string& command) {
    const auto address = CommandAddress(command);
    if (!address || *address == 0)
        return DefaultBaudCode;
    for (int index = 0; index < session.ModuleCount; ++index)
        if (session.ModuleTable[index].Address == *address)
            return session.ModuleTable[index].BaudCode;
    return DefaultBaudCode;
}

SendSettings TypedCommandSettings(const Session& session, const std::string& command,
                                  std::int16_t checksumEnable) {
    const bool toAddressZero = CommandAddress(command) == std::int16_t{0};
    return {.Checksum = toAddressZero ? std::int16_t{0} : checksumEnable,
            .BaudCode = TerminalAddressBaud(session, command)};
}

SendSettings RepeatedCommandSettings(const Session& session, const std::string& command,
                                     std::int16_t checksumEnable) {
    return {.Checksum = checksumEnable, .BaudCode = TerminalAddressBaud(session, command)};
}

} // namespace kavro
