#pragma once

#include "link/line.h"

#include <optional>
#include <string>

namespace kavro {

/// What COM.CFG says, read without opening a port.
struct SavedPort {
    std::int16_t Port = 1; ///< 1 to 8
    PortSettingsRecord Settings;
    std::int16_t ReplyTimeout = 100;     ///< ms
    std::int16_t LongReplyTimeout = 400; ///< ms
};

/// Reads COM.CFG; nothing when there is no such file. Throws `RuntimeFailure` when its content cannot be
/// used.
std::optional<SavedPort> ReadSavedPort(const std::string& configFilePath);

} // namespace kavro
