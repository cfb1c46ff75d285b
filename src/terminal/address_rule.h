#pragma once

#include "map/module_contact.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// The address that a command names in its 2nd and, if present, 3rd character; nothing when these are no
/// hexadecimal digits or the command has but one character.
std::optional<std::int16_t> CommandAddress(const std::string& command);

/// The baud code at which a command is sent: that of the first known module at its address, else 3 (9600);
/// always 3 for address 00 and for a command without an address.
std::int16_t TerminalAddressBaud(const Session& session, const std::string& command);

/// How a typed command is sent: as `checksumEnable` (1 or 0) says, but to address 00 always without checksum.
SendSettings TypedCommandSettings(const Session& session, const std::string& command,
                                  std::int16_t checksumEnable);

/// How a repeated command or a line of a batch file is sent. Unlike a typed one it goes as `checksumEnable`
/// says to address 00 as well; the difference is meant.
SendSettings RepeatedCommandSettings(const Session& session, const std::string& command,
                                     std::int16_t checksumEnable);

} // namespace kavro
