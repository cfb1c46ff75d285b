#pragma once

#include "link/append_file.h"
#include "link/line_listener.h"
#include "traffic/recording.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace kavro {

/// How a recording is written.
struct RecorderOptions {
    bool Overwrite = false; ///< an existing file is replaced
    std::int64_t LimitBytes =
        0; ///< a file that would grow beyond it becomes FILE.1, in place of the one before; 0: none
};

/// Where a file goes that has become full: "FILE.1".
std::string PathBefore(const std::string& path);

/// Throws `RuntimeFailure` when a recording must not be written there: something is there already (FILE.1
/// too, when the length is limited) that may not be overwritten, or is no file. Touches nothing.
void RequireRecordable(const std::string& path, const RecorderOptions& options);

/// Writes what passes to a file, each line at once: what was written stays when the program dies. A file that
/// fails ends the recording, and nothing else: `Failure` tells why.
class Recorder : public LineListener {
public:
    /// Makes the file and writes its first line. Throws `RuntimeFailure` when it exists (unless it may be
    /// overwritten) or cannot be written.
    Recorder(FileOpener opener, const std::string& path, RecordingHead head, const RecorderOptions& options);
    ~Recorder() override;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// Called once, when the file has failed, from within `Passed` or `End`. Must not throw, nor use the
    /// line.
    std::function<void()> Failed = [] {};

    void Passed(const LineTraffic& traffic) override;

    /// Ends the recording, and waits until the disk has it. What passes from now on is not recorded.
    void End();

    /// Why nothing is recorded any more; empty while all is well.
    const std::string& Failure() const { return failure_; }
    const std::string& Path() const { return path_; }

private:
    void Begin(bool overwrite);
    void Write(const std::string& line);
    void WriteTraffic(const LineTraffic& traffic);
    bool IsFullWith(const std::string& line) const;
    void BeginNext(std::int64_t utc);

    FileOpener opener_;
    std::string path_;
    RecordingHead head_;
    RecorderOptions options_;
    std::string failure_;
    std::unique_ptr<AppendFile> file_;
    std::int64_t written_ = 0;    // bytes of this file
    std::int64_t headLength_ = 0; // of these its first line
    bool echoTold_ = false;
};

} // namespace kavro
