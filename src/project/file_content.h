#pragma once

#include <string>

namespace kavro {

/// The bytes of a file. Throws `RuntimeFailure` when it cannot be read, is no regular file or is larger than
/// 16 MB; the description begins with a small letter, to follow on the file's name.
std::string FileContent(const std::string& path);

/// Throws `RuntimeFailure` when the folder of a file that is to be written is not there.
void RequireFolderOf(const std::string& path);

} // namespace kavro
