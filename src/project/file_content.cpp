#include "project/file_content.h"

#include "link/runtime_failure.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kavro {

namespace {

constexpr std::uintmax_t LargestFile = 16'000'000;

} // namespace

std::string FileContent(const std::string& path) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path file = fs::u8path(path);
    const fs::file_status status = fs::status(file, error);
    if (!fs::exists(status))
        throw RuntimeFailure("there is no such file.");
    if (fs::is_directory(status))
        throw RuntimeFailure("it is a folder; name a file.");
    if (!fs::is_regular_file(status))
        throw RuntimeFailure("it is not a regular file.");
    if (fs::file_size(file, error) > LargestFile)
        throw RuntimeFailure("it is larger than any that this program writes.");
    std::ifstream stream(file, std::ios::binary);
    const std::string content((std::istreambuf_iterator<char>(stream)), {});
    if (!stream.is_open() || stream.bad())
        throw RuntimeFailure("it cannot be read. Check that you may read it.");
    return content;
}

void RequireFolderOf(const std::string& path) {
    const auto folder = std::filesystem::u8path(path).parent_path();
    std::error_code error;
    if (!folder.empty() && !std::filesystem::is_directory(folder, error))
        throw RuntimeFailure("There is no folder \"" + folder.string() + "\".");
}

} // namespace kavro
