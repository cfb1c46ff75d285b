#pragma once

#include "project/module_reading.h"

#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// A line as it was read into a file.
struct Backup {
    LineFile File;
    std::vector<std::string> Incomplete{}; ///< a sentence for each module that did not tell everything
};

/// Reads all modules of the session's list, in the order of their addresses. The session has another list
/// afterwards. Throws `RuntimeFailure` when the port fails.
Backup ReadLine(const LineWork& work, const std::string& name);

/// Gives the file the tags, notes and unknown keys that the file before it had.
void KeepWhatIsTheUsers(LineFile& file, const LineFile& before);

/// What of the file before would be gone: modules, or settings that a module did not tell this time. A
/// sentence each.
std::vector<std::string> LostFrom(const LineFile& before, const LineFile& file);

/// What stands at the path already; nothing when there is no file. Throws `RuntimeFailure` when it is no line
/// file, as that must not be written over.
std::optional<LineFile> FileBefore(const std::string& path);

/// The name of a line whose file has none: that of the file without its ending.
std::string NameFromPath(const std::string& path);

/// The path under which the file before is kept when something of it would be gone: FILE.old, or the first
/// of FILE.old2, FILE.old3, ... that is free.
std::string OldPath(const std::string& path);

/// Reads the line and writes the file, with what is the user's in the file `before`, which is kept under
/// `OldPath` when something of it would be gone otherwise: told. `name` empty: as before, or from the path.
/// Returns whether every module told everything; those that did not are told. Throws `RuntimeFailure` when
/// the port or the file fails; the file is then as it was.
bool BackUpLine(const LineWork& work, const std::string& path, const std::optional<LineFile>& before,
                const std::string& name);

} // namespace kavro
