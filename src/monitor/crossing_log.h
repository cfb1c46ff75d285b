#pragma once

#include "link/append_file.h"
#include "link/disk_pace.h"
#include "monitor/crossings.h"

#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace kavro {

/// The file of crossings that stands beside a log: "line.csv" has "line-crossings.csv".
std::string CrossingsPath(const std::string& logPath);

/// Its first line, with its line end; "tag" is the last column while a line file is open.
std::string CrossingsHeading(const Session& session);

/// A line for each crossing: time, address, model, channel, value and unit as in the log, then the side it
/// came to ("above", "below" or "within") and the threshold that lies between. While a line file is open the
/// tag stands behind it.
std::string CrossingLines(const Session& session, const std::vector<Crossing>& crossings);

/// Logs crossings beside the log of values. What is written is on disk when the call returns.
class CrossingLog {
public:
    explicit CrossingLog(FileOpener opener) : opener_(std::move(opener)) {}

    /// Appends crossings to the file beside the log at `logPath`, which is made with the first of them and
    /// never emptied; does nothing when there are none. Throws `RuntimeFailure` when they cannot be written,
    /// once: later ones are tried all the same, and silently until one was written.
    void Write(const Session& session, const std::string& logPath, const std::vector<Crossing>& crossings);

    /// Closes the file; the next failure is told again.
    void Close();

private:
    std::error_code Put(const std::string& heading, const std::string& lines);

    FileOpener opener_;
    std::unique_ptr<AppendFile> file_;
    std::string logPath_; // that it stands beside
    std::string path_;
    bool told_ = false;
    DiskPace diskPace_;
};

} // namespace kavro
