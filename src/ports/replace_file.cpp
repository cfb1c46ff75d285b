#include "ports/replace_file.h"

#include "link/runtime_failure.h"
#include "ports/whole_file.h"

#include <filesystem>
#include <system_error>

namespace kavro {

namespace {

namespace fs = std::filesystem;

constexpr int MostLinks = 40; // as many as the system itself follows

[[noreturn]] void Fail(const fs::path& path, const std::string& reason) {
    std::error_code ignored;
    throw RuntimeFailure("The file " + fs::absolute(path, ignored).string() + " cannot be saved: " + reason +
                         ". Check the space on its disk and the access rights of its folder.");
}

// The file that a chain of links leads to, whether it exists or not.
fs::path FollowLinks(fs::path path) {
    std::error_code ignored;
    for (int link = 0; link < MostLinks && fs::is_symlink(path, ignored); ++link)
        path = path.parent_path() / fs::read_symlink(path, ignored);
    return path;
}

} // namespace

void ReplaceFile(const std::string& path, const std::string& content) {
    const fs::path named = fs::u8path(path);
    std::error_code error;
    const fs::file_status target = fs::status(named, error);
    if (target.type() == fs::file_type::none)
        Fail(named, error.message());
    if (fs::is_directory(target))
        Fail(named, "a folder has that name");
    if (fs::exists(target) && !fs::is_regular_file(target))
        Fail(named, "a device has that name"); // replacing would put a file in its place

    const fs::path file = FollowLinks(named);
    if (file.has_parent_path() && (fs::create_directories(file.parent_path(), error), error))
        Fail(named, "its folder cannot be made: " + error.message());
    if (const std::string reason = WriteWholeFile(file, content); !reason.empty())
        Fail(named, reason);
}

} // namespace kavro
