#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Heading of the module list; the columns of every list line stand under it.
inline constexpr const char* ListHeading = "Address     Model    BaudRate    Format    Remark";

/// The list line of entry `index`: columns of fixed width under `ListHeading`. What a module reports as its
/// model is shown in printable ASCII, any other character as "?". Bounds are checked.
std::string BuildListLine(const Session& session, int index);

} // namespace kavro
