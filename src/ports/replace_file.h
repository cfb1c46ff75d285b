#pragma once

#include <string>

namespace kavro {

/// Replaces the file at `path` (UTF-8) by these bytes, on the disk when it returns. Makes missing folders,
/// follows a symbolic link and keeps the access rights. The file is replaced whole or not at all: throws
/// `RuntimeFailure` with path and the system's reason when it cannot, and the old file is then as it was.
/// Clears away what a save of the same file left behind that was killed.
void ReplaceFile(const std::string& path, const std::string& content);

/// How the system ends the lines of a text that other programs read.
#ifdef _WIN32
inline constexpr const char* SystemLineEnd = "\r\n";
#else
inline constexpr const char* SystemLineEnd = "\n";
#endif

} // namespace kavro
