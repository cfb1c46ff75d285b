#pragma once

namespace kavro {

/// The product name that captions and questions are built around; empty, which leaves its surrounding blanks
/// in place.
inline constexpr const char* ProductName = "";

inline constexpr const char* ProductVersion = "4.01";

/// What `--version` prints behind the name of a program: version and build, as in
/// "4.01 (build 4.01-1, 2026-03-02 1a2b3c4)". Written by the build; a program links kavro_version for it.
extern const char* const VersionText;

/// Title of message boxes that have none of their own.
inline constexpr const char* ApplicationTitle = "Kavro Administration Utility";

} // namespace kavro
