#pragma once

#include "map/module_access.h"
#include "map/module_command.h"
#include "map/session.h"

#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// A reading as it is shown: "+" before a number that has no "-", with the user's decimal separator; any
/// other text as it is.
std::string SignedReading(const AnalogReading& reading, const std::string& separator);

/// Reads channel `channel` of an analog input, believing what `AskModule` believes; the full scale is that of
/// the module's own range. `reading` stays as it was unless the answer is `Ok`.
Answer ReadInputValue(Session& session, int index, int channel, AnalogReading& reading);

/// Whether a model tells which of its inputs are open.
bool HasOpenStatus(std::string_view model);

/// Asks entry `index` which of its inputs are open ("$AABA"): two hexadecimal digits, bit n for channel n.
/// Nothing unless a complete reply "!" comes.
std::optional<std::string> ReadOpenStatus(Session& session, int index);

} // namespace kavro
