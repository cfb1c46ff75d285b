#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Throws `RuntimeFailure` unless the text may name a line in a history: letters, digits, '-', '_' and '.',
/// 64 at most.
void RequireLineName(const std::string& name);

/// The name of the line file that is open, as a name of a line in a history: anything else in it becomes '_'.
/// `UsualLineName` when none is open or nothing is left.
std::string LineNameOf(const Session& session);

} // namespace kavro
