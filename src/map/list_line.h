#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Heading of the module list; the columns of every list line stand under it.
inline constexpr const char* ListHeading = "Address     Model    BaudRate    Format    Remark";

/// A model text as it is shown: 6 characters of printable ASCII, any other character as "?".
std::string ShownModel(const std::string& model);

/// The list line of entry `index`: columns of fixed width under `ListHeading`. Bounds are
/// checked.
std::string BuildListLine(const Session& session, int index);

/// The line of entry `index` in `Session::Device` as a window shows it: one that no longer answers is marked
/// by "no answer" behind it.
std::string ShownLine(const Session& session, int index);

} // namespace kavro
