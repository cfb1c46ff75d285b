#pragma once

#include <string>

namespace kavro {

/// Replaces the file at `path` (UTF-8) by `content`, whose lines end in "\n", with the platform's line ends.
/// Makes missing folders, follows a symbolic link and keeps the access rights. The file is replaced whole or
/// not at all: throws `RuntimeFailure` with path and reason when it cannot, and the old file is then as it
/// was.
void ReplaceFile(const std::string& path, const std::string& content);

} // namespace kavro
