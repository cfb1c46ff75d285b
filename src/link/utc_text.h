#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// A moment as recordings have it: "2026-03-02T14:05:09.120345Z".
std::string UtcText(std::int64_t utc);

} // namespace kavro
