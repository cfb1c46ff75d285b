#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// Settings of the counter / frequency module 8510, as they are entered.
struct CounterConfig {
    LinkSettings Link;
    std::int16_t TypeCode = 0; ///< `CounterRange` or `FrequencyRange`
    CounterSettings Values{};  ///< all but the widths and levels, for which the next four stand
    std::string MinAtHigh;     ///< minimum signal width at high level, microseconds; sent as it is written
    std::string MinAtLow;      ///< the same at low level
    double TtlAtHigh = 0;      ///< TTL high trigger level, volts, rounded to tenths
    double TtlAtLow = 0;       ///< TTL low trigger level
};

/// The entry's settings; nothing is read from the module.
CounterConfig CounterConfigOf(const Session& session, int index);

/// The first entry that is not possible: the address, or, of a module that counts, a number that its command
/// or its field in the entry cannot hold.
std::optional<RefusedEntry> RefusedCounterSetting(const CounterConfig& config);

/// Writes every setting that differs from the entry with a command of its own, in a fixed order: module
/// configuration, input mode, and of a module that counts all the others. Tells every failure and goes on;
/// at the end tells the success when any command was accepted. Keeps in the entry what the module accepted,
/// and leaves `ConfigResult` 1 when it accepted anything, else 2.
///
/// What `RefusedCounterSetting` names is refused before anything is sent.
ConfigOutcome ApplyCounterConfig(Session& session, int index, const CounterConfig& config,
                                 Messages& messages);

} // namespace kavro
