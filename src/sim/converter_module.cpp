#include "sim/converter_module.h"

#include "sim/wire_text.h"

namespace kavro {

std::string ConverterModule::ConfigurationText() const {
    const unsigned word = (Rs485 ? 1U << 15 : 0) | (Settings.Checksum ? 1U << 14 : 0) |
                          (Setting13 ? 1U << 13 : 0) | (Setting8 ? 1U << 8 : 0) |
                          static_cast<unsigned>(Parity & 3) << 3 | static_cast<unsigned>(StopBits & 1) << 2 |
                          static_cast<unsigned>(Settings.DataFormat & 3);
    return WireHex(static_cast<std::uint32_t>(Settings.TypeCode), 2) +
           WireHex(static_cast<std::uint32_t>(WireBaudCode(SecondBaud).value_or(0)), 1) +
           WireHex(static_cast<std::uint32_t>(BaudCodeNumber()), 1) + WireHex(word, 4);
}

} // namespace kavro
