#include "config/converter_config.h"

#include "link/text.h"
#include "map/family_reads.h"

namespace kavro {

namespace {

// The format word. Bits without a name here belong to the module and are sent back as they came.
constexpr std::int32_t DataBitsMask = 3; // data bits - FewestDataBits
constexpr std::int32_t StopBitsBit = 4;  // stop bits - 1
constexpr int ParityShift = 3;
constexpr std::int32_t ParityMask = 3 << ParityShift;
constexpr std::int32_t ChecksumWordBit = 1 << 14;
constexpr std::int32_t Rs485Bit = 1 << 15;
constexpr std::int32_t ShownBits = DataBitsMask | StopBitsBit | ParityMask | ChecksumWordBit | Rs485Bit;

constexpr std::int16_t NoParityCode = 0, OddCode = 1, SecondNoParityCode = 2, EvenCode = 3;

Parity ParityOf(std::int16_t code) {
    if (code == NoParityCode || code == SecondNoParityCode)
        return Parity::None;
    return code == OddCode ? Parity::Odd : Parity::Even;
}

// Of the two codes for "none" the module's own stays.
std::int16_t ParityCode(Parity parity, std::int16_t present) {
    if (parity == ParityOf(present))
        return present;
    switch (parity) {
    case Parity::Odd:
        return OddCode;
    case Parity::Even:
        return EvenCode;
    default:
        return NoParityCode;
    }
}

std::int32_t FormatWord(const ConverterConfig& config, const ModuleRecord& record) {
    return (record.Converter.FormatWord & ~ShownBits) | (config.Rs485 ? Rs485Bit : 0) |
           (config.Link.Checksum != 0 ? ChecksumWordBit : 0) |
           ParityCode(config.Parity, record.ConverterParity) << ParityShift |
           (config.StopBits == 2 ? StopBitsBit : 0) | ((config.DataBits - FewestDataBits) & DataBitsMask);
}

} // namespace

ConverterConfig ConverterConfigOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return {LinkSettingsOf(record),
            record.Converter.SecondBaudCode,
            static_cast<std::int16_t>(record.DataFormat + FewestDataBits),
            ParityOf(record.ConverterParity),
            static_cast<std::int16_t>(record.ConverterStopBits + 1),
            record.ConverterInterface != 0};
}

ConfigOutcome ApplyConverterConfig(Session& session, int index, const ConverterConfig& config,
                                   Messages& messages) {
    session.ConfigResult = 2;
    if (!CheckAddress(session, config.Link, messages))
        return ConfigOutcome::Refused;
    if (config == ConverterConfigOf(session, index))
        return ConfigOutcome::Complete;
    ModuleRecord& record = session.ModuleTable[index];
    const std::int32_t word = FormatWord(config, record);
    const std::string fields = ToHex(record.InputRange, 2) +
                               ToHex(config.SecondBaudCode + WireBaudOffset, 1) +
                               ToHex(config.Link.BaudCode + WireBaudOffset, 1) + ToHex(word, 4);
    const bool accepted = WriteModuleConfig(session, index, config.Link, fields);
    if (accepted) {
        StoreLinkSettings(record, config.Link);
        record.Converter.SecondBaudCode = config.SecondBaudCode;
        DecodeConverterFormat(word, record);
    }
    NoteStep(session, accepted, ConfigFailedText, messages);
    return EndConfig(session, accepted, messages);
}

} // namespace kavro
