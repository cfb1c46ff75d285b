#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// The forms that `ParseMoment` takes, in words.
inline constexpr const char* MomentForms =
    "2026-03-02, 2026-03-02T14:05, \"2026-03-02 14:05:09.120\", a time with Z or +01:00 behind it, or an age "
    "such as 90s, 15m, 2h, 3d or 1w";

/// A moment, in ms since 1970: a date (its midnight), a date and time, or an age before `nowMs`. Without Z or
/// an offset a time is that of the machine's time zone: of one that comes twice as the clocks go back the
/// first is meant, and one that they leave out lasts on from before, so that 02:30 stands for 03:30. Throws
/// `RuntimeFailure` for any other text.
std::int64_t ParseMoment(const std::string& text, std::int64_t nowMs);

} // namespace kavro
