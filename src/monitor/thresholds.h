#pragma once

#include "map/monitor_preferences.h"
#include "map/session.h"
#include "monitor/module_values.h"

#include <optional>
#include <string>

namespace kavro {

/// Where a value stands to its thresholds; at a threshold it is still within.
enum class Side { Within, Below, Above };

/// "within", "below" or "above".
const char* SideText(Side side);

/// What leads a value in a window, so that it is not told by colour alone (UTF-8): "" within, else a triangle
/// that points down or up.
const char* SideSign(Side side);

/// A value that is not known is within.
Side SideOf(const Thresholds& thresholds, const std::optional<double>& number);

/// Whether there is something to set thresholds for: a digital word has none.
inline bool CanHaveThresholds(const ChannelValue& value) {
    return value.Unit != WordUnit;
}

/// The name of a value of entry `index` in the preferences.
ValueKey KeyOf(const Session& session, int index, const ChannelValue& value);

/// The thresholds that the user has set for a value of entry `index`; neither when there are none.
Thresholds ThresholdsOf(const Session& session, int index, const ChannelValue& value);

/// Sets them, or takes them away when there is neither; keeps the preferences for the next start. Throws
/// `RuntimeFailure`, with nothing changed, when that fails.
void SetThresholds(Session& session, const ValueKey& key, const Thresholds& thresholds);

/// A value for people, with its tag when a line file has one: "5 (05H) 8250 ch 1, TT-101".
std::string NameOfValue(const Session& session, int index, const ChannelValue& value);

} // namespace kavro
