#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// A moment, in microseconds since 1970, as recordings have it: "2026-03-02T14:05:09.120345Z".
std::string UtcText(std::int64_t utc);

/// A moment to the second, as files have it: "2026-03-02T14:05:09Z".
std::string UtcToSecond(std::int64_t utc);

/// Such a moment for people: "2026-03-02 14:05:09 UTC"; another text as it is.
std::string ShownUtc(std::string utc);

} // namespace kavro
