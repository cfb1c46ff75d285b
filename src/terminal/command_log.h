#pragma once

#include <fstream>
#include <string>

namespace kavro {

/// The terminal's log file: each command on a line of its own, with the system at once, so that a crash of
/// the program loses none.
class CommandLog {
public:
    /// Closes the file that is open, and opens `path` for output; an existing file is emptied. Throws
    /// `RuntimeFailure` when it cannot be opened.
    void Open(const std::string& path);

    void Close();

    bool IsOpen() const { return file_.is_open(); }

    /// The file opened last; empty when none was.
    const std::string& Path() const { return path_; }

    /// Writes a command, trimmed, as one line; does nothing when no file is open. Throws `RuntimeFailure`,
    /// with the file closed, when it cannot be written.
    void Write(const std::string& command);

private:
    std::ofstream file_;
    std::string path_;
};

} // namespace kavro
