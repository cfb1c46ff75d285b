#include "config/config_commands.h"

#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::int32_t HighestAddress = 255;
constexpr std::int16_t ChecksumBit = 64;
constexpr std::int16_t DigitalTypeCode = 0x40;

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

bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, const std::string& fields) {
    const std::string newAddress = ToHex(link.Address, 2);
    return ExchangeWithModule(session, index, "%" + AddressText(session, index) + newAddress + fields,
                              session.Line.LongReplyTimeout) &&
           session.Line.ReplyText == "!" + newAddress;
}

bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                       std::int16_t formatByte) {
    return WriteModuleConfig(session, index, link,
                             ToHex(typeCode, 2) + ToHex(link.BaudCode + WireBaudOffset, 2) +
                                 ToHex(formatByte, 2));
}

bool WriteSetting(Session& session, int index, char lead, const std::string& code) {
    ExchangeWithModule(session, index, lead + AddressText(session, index) + code,
                       session.Line.LongReplyTimeout);
    return session.Line.ReplyIs('!');
}

bool WriteAcknowledged(Session& session, int index, char lead, const std::string& code) {
    const std::string address = AddressText(session, index);
    if (!ExchangeWithModule(session, index, lead + address + code, session.Line.LongReplyTimeout))
        return false;
    const std::string& reply = session.Line.ReplyText;
    return reply == "!" + address || reply == "!" + ToHex(session.ModuleTable[index].Address, 2);
}

bool ChangeModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                        std::int16_t formatByte, Messages& messages) {
    const bool accepted = WriteModuleConfig(session, index, link, typeCode, formatByte);
    session.ConfigResult = accepted ? 1 : 2;
    if (accepted)
        StoreLinkSettings(session.ModuleTable[index], link);
    else
        ShowError(messages, ConfigFailedText);
    return accepted;
}

bool ChangeDigitalModuleConfig(Session& session, int index, const LinkSettings& link, Messages& messages) {
    return ChangeModuleConfig(session, index, link, DigitalTypeCode, FormatByte(link, 0), messages);
}

bool ChangeSetting(Session& session, int index, char lead, const std::string& code, const char* failure,
                   Messages& messages) {
    const bool accepted = WriteSetting(session, index, lead, code);
    if (accepted)
        session.ConfigResult = 1;
    else
        ShowError(messages, failure);
    return accepted;
}

void ShowError(Messages& messages, const char* text) {
    messages.Show(text, "Error");
}

} // namespace kavro
