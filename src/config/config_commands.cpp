#include "config/config_commands.h"

#include "link/text.h"
#include "map/module_access.h"
#include "map/module_command.h"

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

std::optional<RefusedEntry> RefusedAddress(const LinkSettings& link) {
    if (link.Address <= HighestAddress)
        return std::nullopt;
    return RefusedEntry{"Addr", "Address can not exceed 255."};
}

bool TellRefused(const std::optional<RefusedEntry>& refused, Messages& messages) {
    if (refused)
        ShowError(messages, refused->Text);
    return refused.has_value();
}

bool CheckAddress(Session& session, const LinkSettings& link, Messages& messages) {
    if (!TellRefused(RefusedAddress(link), messages))
        return true;
    session.ConfigResult = 2;
    return false;
}

std::int16_t FormatByte(const LinkSettings& link, std::int16_t familyBits) {
    return static_cast<std::int16_t>(link.Checksum * ChecksumBit + familyBits);
}

bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, const std::string& fields) {
    const std::string newAddress = ToHex(link.Address, 2);
    return ExchangeWithModule(session, index, CommandFor(session, index, '%', newAddress + fields),
                              session.Line.LongReplyTimeout) &&
           session.Line.ReplyText == "!" + newAddress;
}

bool WriteModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                       std::int16_t formatByte) {
    return WriteModuleConfig(session, index, link,
                             ToHex(typeCode, 2) + ToHex(link.BaudCode + WireBaudOffset, 2) +
                                 ToHex(formatByte, 2));
}

bool WriteAcknowledged(Session& session, int index, char lead, const std::string& code) {
    ExchangeWithModule(session, index, CommandFor(session, index, lead, code), session.Line.LongReplyTimeout);
    return LastAnswer(session, index, lead, code) == Answer::Ok;
}

bool NoteStep(Session& session, bool accepted, const char* failure, Messages& messages) {
    if (accepted)
        session.ConfigResult = 1;
    else
        ShowError(messages, failure);
    return accepted;
}

namespace {

bool ChangeModuleConfig(Session& session, int index, const LinkSettings& link, std::int16_t typeCode,
                        std::int16_t formatByte, Messages& messages) {
    const bool accepted = WriteModuleConfig(session, index, link, typeCode, formatByte);
    if (NoteStep(session, accepted, ConfigFailedText, messages))
        StoreLinkSettings(session.ModuleTable[index], link);
    else
        session.ConfigResult = 2;
    return accepted;
}

} // namespace

StepResult ChangeAnalogModuleConfig(Session& session, int index, const AnalogModuleConfig& config,
                                    Messages& messages) {
    ModuleRecord& record = session.ModuleTable[index];
    if (config == AnalogModuleConfig{LinkSettingsOf(record), record.InputRange, record.DataFormat})
        return StepResult::Unneeded;
    if (!ChangeModuleConfig(session, index, config.Link, config.Range,
                            FormatByte(config.Link, config.DataFormat), messages))
        return StepResult::Failed;
    record.InputRange = config.Range;
    record.DataFormat = config.DataFormat;
    return StepResult::Accepted;
}

StepResult ChangeDigitalModuleConfig(Session& session, int index, const LinkSettings& link,
                                     Messages& messages) {
    if (link == LinkSettingsOf(session.ModuleTable[index]))
        return StepResult::Unneeded;
    return ChangeModuleConfig(session, index, link, DigitalTypeCode, FormatByte(link, 0), messages)
               ? StepResult::Accepted
               : StepResult::Failed;
}

bool ChangeSetting(Session& session, int index, char lead, const std::string& code, const char* failure,
                   Messages& messages) {
    ExchangeWithModule(session, index, CommandFor(session, index, lead, code), session.Line.LongReplyTimeout);
    return NoteStep(session, session.Line.ReplyIs('!'), failure, messages);
}

ConfigOutcome EndConfig(const Session& session, bool complete, Messages& messages) {
    if (session.ConfigResult == 1)
        messages.Show(ConfigCompleteText);
    return OutcomeOf(complete);
}

void ShowError(Messages& messages, const std::string& text) {
    messages.Show(text, "Error");
}

} // namespace kavro
