#pragma once

#include "link/append_file.h"
#include "link/wall_time.h"
#include "map/monitor_preferences.h"

#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace kavro {

/// `path` with `text` between its name and its suffix: "log.csv" and "-2" give "log-2.csv".
std::string WithBehindName(const std::string& path, const std::string& text);

/// The file of the hour or day of a moment, by its local time: "log.csv" becomes "log-2031-02-03T04.csv" or
/// "log-2031-02-03.csv"; `path` itself when there is one file alone. The name of such a file stands for all
/// of them. An hour that local time has twice has one file.
std::string PathOfPeriod(const std::string& path, NewLogFile newFile, const WallTime& time);

/// A file that is gone on with, or why it is not.
struct ContinuedFile {
    std::unique_ptr<AppendFile> File;
    std::string Path; ///< of the file, also of one that could not be opened
    std::error_code Error;
};

/// Opens the file at `path` to be gone on with, or makes it; an empty one gets `heading`. The part of a line
/// at its end, left behind by a power cut, is taken away. A file with another heading, as it is no such log
/// or has other columns, is left as it is: the first file that fits, of those with "-2" to "-99" behind the
/// name, takes its place.
ContinuedFile ContinueFile(const FileOpener& opener, const std::string& path, const std::string& heading);

/// Writes whole lines, or none of them: without the part of a line that may still have found room. `wait`:
/// they are on the disk when it returns.
std::error_code WriteLines(AppendFile& file, std::string_view lines, bool wait = true);

} // namespace kavro
