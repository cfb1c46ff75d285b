#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// The list line of entry `index`: columns of fixed width under `ListHeading`. Bounds are checked.
std::string BuildListLine(const Session& session, int index);

} // namespace kavro
