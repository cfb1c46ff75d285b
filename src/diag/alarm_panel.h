#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <cstdint>
#include <string>

namespace kavro {

/// Digital outputs of an analog input with alarms; while its alarm is enabled, output 0 is the low and output
/// 1 the high alarm.
inline constexpr int AlarmOutputTotal = 2;

/// Modes of the alarm.
enum AlarmMode : std::int16_t { AlarmDisabled = 0, AlarmMomentary = 1, AlarmLatched = 2 };

/// What such a module reports besides its reading.
struct AlarmStates {
    std::int16_t Mode = AlarmDisabled; ///< 0 to 2
    unsigned Outputs = 0;              ///< bit n: output n is on
    bool Input = false;                ///< level of the digital input

    bool operator==(const AlarmStates&) const = default;
};

/// Reads them from entry `index` ("@AADI" -> "!AASOOII"). On failure `states` stays as it is.
Answer ReadAlarmStates(Session& session, int index, AlarmStates& states);

/// Reads the low ("@AARL") or high ("@AARH") limit as sign and number with its unit, "+01.500 V". On failure
/// `text` stays as it is.
Answer ReadAlarmLimit(Session& session, int index, bool high, std::string& text);

/// Switches output 0 or 1 on or off and leaves the other one as the module reports it at this moment
/// ("@AADI", then "@AADO" and two digits). Nothing is sent when that cannot be read.
Answer SwitchAlarmOutput(Session& session, int index, int output, bool on);

/// Clears latched alarms ("@AACA").
Answer ClearAlarms(Session& session, int index);

/// Which alarms are active, in words: "None", "Low", "High", "Low and high"; "-" while the alarm is disabled.
std::string ActiveAlarmsText(const AlarmStates& states);

} // namespace kavro
