#include "config/config_commands.h"

#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::int32_t HighestAddress = 255;
constexpr std::int16_t WireBaudOffset = 3;
constexpr std::int16_t ChecksumBit = 64;

} // namespace

LinkSettings LinkSettingsOf(const ModuleRecord& record) {
    return {record.Address, record.BaudCode, record.Checksum};
}

void StoreLinkSettings(ModuleRecord& record, const LinkSettings& link) {
    record.Address = static_cast<std::int16_t>(link.Address);
    record.BaudCode = link.BaudCode;
    record.Checksum = link.Checksum;
}

bool CheckAddress(Session& session, const LinkSettings& link, Messages& messages) {
    if (link.Address <= HighestAddress)
        return true;
    ShowError(messages, "Address can not exceed 255.");
    session.ConfigResult = 2;
    return false;
}

std::int16_t FormatByte(const LinkSettings& link, std::int16_t familyBits) {
    return static_cast<std::int16_t>(link.Checksum * ChecksumBit + familyBits);
}

bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                       std::int16_t formatByte) {
    const std::string newAddress = ToHex(link.Address, 2);
    const std::string command = "%" + AddressText(session, index) + newAddress + ToHex(typeCode, 2) +
                                ToHex(link.BaudCode + WireBaudOffset, 2) + ToHex(formatByte, 2);
    return ExchangeWithModule(session, index, command, session.Line.LongReplyTimeout) &&
           session.Line.ReplyText == "!" + newAddress;
}

bool WriteSetting(Session& session, int index, char lead, const std::string& code) {
    ExchangeWithModule(session, index, lead + AddressText(session, index) + code,
                       session.Line.LongReplyTimeout);
    return session.Line.ReplyIs('!');
}

void ShowError(Messages& messages, const char* text) {
    messages.Show(text, "Error");
}

} // namespace kavro
