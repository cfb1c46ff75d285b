#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <array>
#include <cstdint>

namespace kavro {

/// Counters, or frequency inputs, of a counter module.
inline constexpr int CounterTotal = 2;

/// A switch of each of the counters 0 and 1.
using CounterFlags = std::array<bool, CounterTotal>;

/// Alarms of the counters.
struct CounterAlarms {
    CounterFlags Enabled{};
    CounterFlags Active{}; ///< the count is at or above its limit

    bool operator==(const CounterAlarms&) const = default;
};

/// Reads the count of counter 0 or 1 of entry `index`, or in a frequency type the frequency of that input in
/// Hz ("#AAn" -> ">" and 8 digits). As with all these reads, the value stays as it is on failure.
Answer ReadCounter(Session& session, int index, int counter, std::uint32_t& value);

/// Reads which counters count ("$AA5" -> "!AAss").
Answer ReadCounterStarted(Session& session, int index, CounterFlags& started);

/// Reads which counters have passed their maximum count ("$AA7" -> "!AAoo").
Answer ReadCounterOverflow(Session& session, int index, CounterFlags& overflow);

/// Reads the alarms ("@AADI" -> "!AAeeOO").
Answer ReadCounterAlarms(Session& session, int index, CounterAlarms& alarms);

/// Starts or stops a counter ("$AA5nv").
Answer StartCounter(Session& session, int index, int counter, bool start);

/// Sets a counter back to its initial count, which also clears its overflow ("$AA6n").
Answer ClearCounter(Session& session, int index, int counter);

} // namespace kavro
