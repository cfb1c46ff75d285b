#pragma once

namespace kavro {

/// The product name that captions and questions are built around; empty, which leaves its surrounding blanks
/// in place.
inline constexpr const char* ProductName = "";

inline constexpr const char* ProductVersion = "4.01";

/// Title of message boxes that have none of their own.
inline constexpr const char* ApplicationTitle = "Kavro Administration Utility";

} // namespace kavro
