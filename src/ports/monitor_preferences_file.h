#pragma once

#include "map/monitor_preferences.h"

#include <map>
#include <string>

class QSettings;

namespace kavro {

/// What the file of preferences says of the monitor. Each value of a list that makes no sense is passed over;
/// the others count.
///
///     MonitorInterval=250                    ms
///     MonitorSpan=60                         minutes
///     MonitorLeftOut="3 17"                  addresses
///     MonitorTicked="5/0 5/1 9/IN"           address and channel
///     MonitorThresholds="5/0:1.5..3 6/A:..20"
///     MonitorNewFile=hour                    or "day"
MonitorPreferences ReadMonitorPreferences(const QSettings& settings);

/// The values of these keys, empty for what is as it is at first.
std::map<std::string, std::string> MonitorValues(const MonitorPreferences& preferences);

} // namespace kavro
