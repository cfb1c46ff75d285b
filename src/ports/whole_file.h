#pragma once

#include <filesystem>
#include <string>

namespace kavro {

/// Puts a file of this content in the place of `path`, which is a file or nothing yet in a folder that
/// exists. Empty when it is there and on the disk, else the system's reason, with the old file as it was.
std::string WriteWholeFile(const std::filesystem::path& path, const std::string& content);

} // namespace kavro
