#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// A moment, in microseconds since 1970, as recordings have it: "2026-03-02T14:05:09.120345Z".
std::string UtcText(std::int64_t utc);

/// A moment to the second, as files have it: "2026-03-02T14:05:09Z".
std::string UtcToSecond(std::int64_t utc);

/// A moment, in milliseconds since 1970, as histories have it: "2026-03-02T14:05:09.120Z". The order of such
/// texts is that of time.
std::string UtcMsText(std::int64_t unixMs);

/// The moment of such a text; nothing for any other text.
std::optional<std::int64_t> MsOfUtcText(std::string_view text);

/// A moment to the second for people: "2026-03-02 14:05:09 UTC"; another text as it is.
std::string ShownUtc(std::string utc);

} // namespace kavro
