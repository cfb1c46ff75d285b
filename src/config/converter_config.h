#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>

namespace kavro {

/// The least of a converter's four numbers of data bits.
inline constexpr std::int16_t FewestDataBits = 5;

/// Parity of a converter's characters. Two codes of the format word mean "none".
enum class Parity : std::int16_t { None, Odd, Even };

/// Settings of a communication converter.
struct ConverterConfig {
    LinkSettings Link;
    std::int16_t SecondBaudCode = 0;     ///< baud code of the other side, 0 to 7
    std::int16_t DataBits = 8;           ///< 5 to 8
    kavro::Parity Parity = Parity::None; ///< of the characters
    std::int16_t StopBits = 1;           ///< 1 or 2
    bool Rs485 = false;                  ///< RS-485, else RS-422

    bool operator==(const ConverterConfig&) const = default;
};

/// The entry's settings; nothing is read from the module.
ConverterConfig ConverterConfigOf(const Session& session, int index);

/// Writes the settings when they differ from the entry: "%AANNTTBCFFFF" with the second baud code (B), the
/// baud code (C) and the format word, whose other bits stay as they were read. Tells the failure or the
/// success, keeps in the entry what the module accepted, and leaves `ConfigResult` 1 when it did, else 2.
ConfigOutcome ApplyConverterConfig(Session& session, int index, const ConverterConfig& config,
                                   Messages& messages);

} // namespace kavro
