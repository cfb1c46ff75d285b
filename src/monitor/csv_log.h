#pragma once

#include "link/append_file.h"
#include "link/disk_pace.h"
#include "link/wall_time.h"
#include "map/monitor_preferences.h"
#include "map/session.h"
#include "monitor/module_values.h"

#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace kavro {

/// The first line of a log of values, with its line end.
inline constexpr const char* CsvHeader = "time,address,model,channel,value,unit,state\n";

/// The first line of a log that begins now: `CsvHeader`, with "tag" as the last column while a line file is
/// open.
std::string CsvHeading(const Session& session);

/// The tag of the channel of entry `index` that a value is of, or the module's where the channel has none.
std::string TagText(const Session& session, int index, const ChannelValue& value);

/// A log line for each of the values of entry `index`, disabled channels excepted; the address is decimal,
/// the value empty unless the state is "ok". A field is quoted where its text needs it. While a line file is
/// open the tag of the channel stands behind it, or the module's where the channel has none.
std::string CsvLines(const Session& session, int index, const std::vector<ChannelValue>& values,
                     const WallTime& time);

/// A log file. What is written outlives the program when the call returns; the disk is waited for once a
/// second (`DiskPace`) and by `Close`.
class CsvLog {
public:
    explicit CsvLog(FileOpener opener) : opener_(std::move(opener)) {}

    /// Closes the file that is open, opens `path` for output, emptying an existing file, and writes
    /// `heading`. Throws `RuntimeFailure` when that fails.
    void Open(const std::string& path, const std::string& heading = CsvHeader);

    /// The same for a log that begins a new file each hour or day, as `PathOfPeriod` names them; `now` is in
    /// the first. A file that is there already is gone on with, never emptied.
    void OpenPeriods(const std::string& path, const std::string& heading, NewLogFile newFile,
                     const WallTime& now);

    void Close();

    bool IsOpen() const { return file_ != nullptr; }

    /// The file opened last; empty when none is open.
    const std::string& Path() const { return path_; }

    /// Appends whole lines, which were read at `time`, to the file of that time; does nothing when no file is
    /// open. Throws `RuntimeFailure`, with the file closed and no part of the lines left in it, when they
    /// cannot be written.
    void Write(std::string_view lines, const WallTime& time);

private:
    std::error_code Continue(const WallTime& time);
    void CloseFile();

    FileOpener opener_;
    std::unique_ptr<AppendFile> file_;
    std::string path_;
    std::string chosen_;  // by the user, of a log of several files
    std::string period_;  // what `PathOfPeriod` gives for the file that is open
    std::string heading_; // of each of them
    NewLogFile newFile_ = NewLogFile::Never;
    DiskPace diskPace_;
};

} // namespace kavro
