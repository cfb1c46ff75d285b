#pragma once

#include "map/search_times.h"

#include <cstdint>
#include <string>

namespace kavro {

/// A span of time for the user, as exact as it is of use: "53 s", "2 min 40 s", "41 min". Rounded up, so that
/// nothing takes longer than it says.
std::string TimeText(std::int64_t milliseconds);

/// How long a search takes: "at most 41 min" of the exact one, "about 2 min 40 s" of the fast one. Empty when
/// no baud rate is tried.
std::string SearchTimeText(const SearchScope& scope, bool fast);

} // namespace kavro
