#include "sim/converter_module.h"

#include "sim/wire_text.h"

namespace kavro {

namespace {

// The format word; all its other bits are kept as they are set.
constexpr unsigned Rs485Bit = 1U << 15, ChecksumWordBit = 1U << 14, Bit13 = 1U << 13, Bit8 = 1U << 8;
constexpr unsigned ParityBits = 3U << 3, StopBit = 1U << 2, DataBits = 3U;
constexpr unsigned KnownBits = Rs485Bit | ChecksumWordBit | Bit13 | Bit8 | ParityBits | StopBit | DataBits;

} // namespace

std::optional<std::string> ConverterModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    static constexpr CommandEntry<ConverterModule> Commands[] = {
        {"%AAhhhhhhhhhh",
         [](ConverterModule& module, const Request& request) { return module.Configure(request.Arguments); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

std::string ConverterModule::ConfigurationText() const {
    const unsigned word = OtherBits | (Rs485 ? Rs485Bit : 0) | (Settings.Checksum ? ChecksumWordBit : 0) |
                          (Setting13 ? Bit13 : 0) | (Setting8 ? Bit8 : 0) |
                          (static_cast<unsigned>(Parity) << 3 & ParityBits) | (StopBits != 0 ? StopBit : 0) |
                          (static_cast<unsigned>(Settings.DataFormat) & DataBits);
    return WireHex(static_cast<std::uint32_t>(Settings.TypeCode), 2) +
           WireHex(static_cast<std::uint32_t>(WireBaudCode(SecondBaud).value_or(0)), 1) +
           WireHex(static_cast<std::uint32_t>(BaudCodeNumber()), 1) + WireHex(word, 4);
}

// `digits`: new address and type code, two digits each, the two baud codes, format word.
std::string ConverterModule::Configure(std::string_view digits) {
    const auto field = [digits](std::size_t start, std::size_t size) {
        return static_cast<int>(FromWireHex(digits.substr(start, size)));
    };
    const auto secondBaud = FromWireBaudCode(field(4, 1));
    const auto baud = FromWireBaudCode(field(5, 1));
    if (!HasTypeCode(field(2, 2)) || !MaySetBaud(secondBaud, SecondBaud) || !MaySetBaud(baud, Settings.Baud))
        return Refusal();
    const auto word = static_cast<unsigned>(field(6, 4));
    Settings.Address = field(0, 2);
    Settings.Baud = *baud;
    SecondBaud = *secondBaud;
    KeepChecksum((word & ChecksumWordBit) != 0);
    Rs485 = (word & Rs485Bit) != 0;
    Setting13 = (word & Bit13) != 0;
    Setting8 = (word & Bit8) != 0;
    Parity = static_cast<int>((word & ParityBits) >> 3);
    StopBits = (word & StopBit) != 0 ? 1 : 0;
    Settings.DataFormat = static_cast<int>(word & DataBits);
    OtherBits = word & ~KnownBits;
    return Valid();
}

} // namespace kavro
