#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace kavro {

/// A file that is only added to: a log, a recording, a journal. How a system does that is known in `ports`
/// alone. Closed when it is destroyed.
class AppendFile {
public:
    AppendFile() = default;
    virtual ~AppendFile() = default;
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    /// Hands the whole text to the system, which has it then, also when the program dies; does not wait for
    /// the disk. An error when it does not all fit: a part of it may be in the file.
    virtual std::error_code Write(std::string_view text) = 0;

    /// Waits until the disk has what was written. What is no file on a disk has nothing to wait for.
    virtual std::error_code WaitForDisk() = 0;

    /// Bytes up to where the next ones go; -1 for a device, which has no length.
    virtual std::int64_t Length() = 0;

    /// Takes away what stands behind the first `length` bytes, as far as that is possible.
    virtual void CutTo(std::int64_t length) = 0;
};

/// How a file is opened.
enum class OpenAs {
    New,       ///< must not exist yet
    Emptied,   ///< made, or emptied
    Unwaiting, ///< as `Emptied`; a pipe that nobody reads is an error and keeps nobody waiting
    Existing,  ///< must exist; its content stays
    Continued, ///< made, or its content stays; a pipe is as with `Unwaiting`
};

/// What came of opening: a file, or why there is none.
struct OpenedFile {
    std::unique_ptr<AppendFile> File;
    std::error_code Error; ///< its words are the system's
};

/// Opens the file at a path (UTF-8).
using FileOpener = std::function<OpenedFile(const std::string& path, OpenAs as)>;

/// Writes the whole text and waits until the disk has it.
inline std::error_code WriteThrough(AppendFile& file, std::string_view text) {
    const std::error_code error = file.Write(text);
    return error ? error : file.WaitForDisk();
}

} // namespace kavro
