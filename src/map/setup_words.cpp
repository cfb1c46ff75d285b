#include "map/setup_words.h"

#include "link/baud.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/family_reads.h"

namespace kavro {

namespace {

constexpr std::int16_t DigitalType = 0x40;
constexpr std::uint32_t FormatMask = 3, GateTimeBit = 4, ChecksumBit = 0x40;
constexpr std::uint32_t WireBaudOffset = 3;
constexpr const char* ParityWords[] = {"no parity", "odd parity", "no parity", "even parity"};
constexpr int FewestDataBits = 5;

std::optional<std::string> BaudWords(std::string_view digits) {
    const auto code = HexNumber(digits);
    if (!code || *code < WireBaudOffset || *code >= WireBaudOffset + BaudCodeCount)
        return std::nullopt;
    return BaudNames[*code - WireBaudOffset] + std::string(" baud");
}

const char* ChecksumWords(bool checksum) {
    return checksum ? ", checksum" : ", no checksum";
}

std::string TypeWords(std::int16_t type, std::uint32_t format) {
    if (type == DigitalType)
        return "Digital I/O";
    std::string name = Trim(RangeName(type));
    if (type == CounterRange)
        return name;
    if (type == FrequencyRange)
        return name + ((format & GateTimeBit) != 0 ? ", gate time 1 s" : ", gate time 0.1 s");
    return (name.empty() ? "range code " + ToHex(type, 2) : name) + ", " +
           Trim(FormatName(static_cast<std::int16_t>(format & FormatMask)));
}

} // namespace

std::optional<std::string> SetupWords(std::string_view codes) {
    const auto type = HexNumber(codes.substr(0, 2));
    const auto format = HexNumber(codes.substr(4));
    const auto baud = BaudWords(codes.substr(2, 2));
    if (!type || !baud || !format || (*format & ~(FormatMask | GateTimeBit | ChecksumBit)) != 0)
        return std::nullopt;
    return TypeWords(static_cast<std::int16_t>(*type), *format) + ", " + *baud +
           ChecksumWords((*format & ChecksumBit) != 0);
}

std::optional<std::string> ConverterSetupWords(std::string_view codes) {
    const auto otherBaud = BaudWords(codes.substr(2, 1));
    const auto baud = BaudWords(codes.substr(3, 1));
    const auto word = HexNumber(codes.substr(4));
    if (!HexNumber(codes.substr(0, 2)) || !otherBaud || !baud || !word)
        return std::nullopt;
    ModuleRecord record;
    DecodeConverterFormat(static_cast<std::int32_t>(*word), record);
    return std::string(record.ConverterInterface != 0 ? "RS-485, " : "RS-422, ") + *baud + ", other side " +
           *otherBaud + ", " + ParityWords[record.ConverterParity] + ", " +
           std::to_string(record.DataFormat + FewestDataBits) + " data bits, " +
           (record.ConverterStopBits == 0 ? "1 stop bit" : "2 stop bits") +
           ChecksumWords(record.Checksum != 0);
}

std::string PlainNumber(std::string_view text) {
    const bool negative = text.starts_with('-') && text.find_first_of("123456789") != std::string_view::npos;
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    while (text.size() > 1 && text[0] == '0' && text[1] != '.')
        text.remove_prefix(1);
    return (negative ? "-" : "") + std::string(text);
}

std::string BitNumbers(std::uint32_t bits) {
    std::string numbers;
    for (int first = 0; first < 32; ++first) {
        if ((bits >> first & 1U) == 0)
            continue;
        int last = first;
        while (last < 31 && (bits >> (last + 1) & 1U) != 0)
            ++last;
        numbers += (numbers.empty() ? "" : ", ") + std::to_string(first);
        if (last > first)
            numbers += (last > first + 1 ? " to " : ", ") + std::to_string(last);
        first = last;
    }
    return numbers.empty() ? "none" : numbers;
}

} // namespace kavro
