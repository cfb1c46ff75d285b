#pragma once

#include "config/config_commands.h"
#include "link/messages.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// Settings of an analog input module with one channel and alarms.
struct AlarmInputConfig {
    LinkSettings Link;
    std::int16_t InputRange = 0; ///< range code
    std::int16_t DataFormat = 0; ///< data format code
    std::int16_t AlarmMode = 0;  ///< 0 disabled, 1 momentary, 2 latch
    std::string LowAlarm;  ///< low alarm limit as entered, in the range's unit; the user's decimal separator
    std::string HighAlarm; ///< high alarm limit
};

/// The entry's settings, its limits with the decimals of its range; nothing is read from the module.
AlarmInputConfig AlarmInputConfigOf(const Session& session, int index);

/// The first entry that is not possible: the address, the range, or a limit that is not a number within the
/// full scale of `InputRange`. `separator` is the user's decimal separator; "." is taken as well.
std::optional<RefusedEntry> RefusedAlarmSetting(const AlarmInputConfig& config, const std::string& separator);

/// What the user has to know of the two limits before they are written; empty when there is nothing.
std::string AlarmOrderNote(const AlarmInputConfig& config, const std::string& separator);

/// Writes what differs from the entry, in this order: module configuration, alarm mode ("@AADA", "@AAEA1",
/// "@AAEA2"), low and high alarm limit ("@AAPL+01.500", "@AAPH..."). A changed range changes the form of the
/// limits, so both are written again. Tells every failure and goes on; at the end tells the success when any
/// command was accepted. Keeps in the entry what the module accepted, and leaves `ConfigResult` 1 when it
/// accepted anything, else 2.
///
/// What `RefusedAlarmSetting` names is refused before anything is sent.
ConfigOutcome ApplyAlarmInputConfig(Session& session, int index, const AlarmInputConfig& config,
                                    Messages& messages);

} // namespace kavro
