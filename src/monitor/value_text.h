#pragma once

#include "monitor/monitor.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// "5 (05H) 8250"
std::string ModuleText(const Session& session, int index);

/// Whether the last number that was read of a value is shown: it has one, and is not switched off.
bool ShowsNumber(const MonitoredValue& value);

/// "1.2500 °C", or the state in words where there is no number, with the user's decimal separator. The value
/// of a channel that has no number is led by its name: "A: 4.000 mA".
std::string ValueText(const MonitoredValue& value, const std::string& separator);

/// How old something is: "2.5 s", "100 s", "5 min", "3 h", "4 days"; empty for what never was.
std::string AgeText(std::optional<std::int64_t> ageMs, const std::string& separator);

} // namespace kavro
