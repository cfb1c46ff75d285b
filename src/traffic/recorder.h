#pragma once

#include "link/line_listener.h"
#include "traffic/recording.h"

#include <cstdint>
#include <string>

namespace kavro {

/// How a recording is written.
struct RecorderOptions {
    bool Overwrite = false; ///< an existing file is replaced
    std::int64_t LimitBytes =
        0; ///< a file that reaches it becomes FILE.1, in place of the one before; 0: none
};

/// Writes what passes to a file, each line at once. A file that fails ends the recording, and nothing else:
/// `Failure` tells why.
class Recorder : public LineListener {
public:
    /// Makes the file and writes its first line. Throws `RuntimeFailure` when it exists (unless it may be
    /// overwritten) or cannot be written.
    Recorder(const std::string& path, RecordingHead head, const RecorderOptions& options);
    ~Recorder() override;
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    void Passed(const LineTraffic& traffic) override;

    /// Why nothing is recorded any more; empty while all is well.
    const std::string& Failure() const { return failure_; }
    const std::string& Path() const { return path_; }

private:
    void Begin();
    void Write(const std::string& line);

    std::string path_;
    RecordingHead head_;
    RecorderOptions options_;
    std::string failure_;
    int file_ = -1;
    std::int64_t written_ = 0; // bytes of this file
    bool echoTold_ = false;
};

} // namespace kavro
