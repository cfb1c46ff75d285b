#include "traffic/recorder.h"

#include "link/runtime_failure.h"
#include "link/write_through.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kavro {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t LongestStray = 65536; // bytes a line

std::string Subject(const std::string& path) {
    return "The recording \"" + path + "\" cannot be written: ";
}

[[noreturn]] void ThrowReason(const std::string& path) {
    throw RuntimeFailure(Subject(path) + std::generic_category().message(errno) +
                         ". Look at the folder and its free space, or choose another file.");
}

void RequireFree(const std::string& path, bool overwrite) {
    std::error_code ignored;
    const fs::file_status status = fs::status(fs::u8path(path), ignored);
    if (fs::is_directory(status))
        throw RuntimeFailure(Subject(path) + "it is a folder. Name a file.");
    if (fs::is_fifo(status)) // opening one waits for a reader
        throw RuntimeFailure(Subject(path) + "it is a pipe. Name a file.");
    if (fs::exists(status) && !overwrite)
        throw RuntimeFailure(Subject(path) + "it exists already. Choose another name, or let it be "
                                             "overwritten (--overwrite).");
}

} // namespace

std::string PathBefore(const std::string& path) {
    return path + ".1";
}

void RequireRecordable(const std::string& path, const RecorderOptions& options) {
    RequireFree(path, options.Overwrite);
    if (options.LimitBytes > 0)
        RequireFree(PathBefore(path), options.Overwrite);
}

Recorder::Recorder(const std::string& path, RecordingHead head, const RecorderOptions& options)
    : path_(path), head_(std::move(head)), options_(options) {
    RequireRecordable(path_, options_);
    try {
        Begin(options_.Overwrite);
    } catch (const RuntimeFailure&) {
        CloseFile();
        throw;
    }
}

Recorder::~Recorder() {
    Failed = [] {}; // nobody is there any more to be told
    End();
}

void Recorder::Begin(bool overwrite) {
    const int ifExists = overwrite ? O_TRUNC : O_EXCL;
    file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | ifExists, 0666);
    if (file_ < 0)
        ThrowReason(path_);
    written_ = 0;
    echoTold_ = false;
    Write(RecordingHeadLine(head_));
    headLength_ = written_;
}

// A line goes out in one piece, so that a program that is killed leaves whole lines.
void Recorder::Write(const std::string& line) {
    if (!WriteAll(file_, line))
        ThrowReason(path_);
    written_ += static_cast<std::int64_t>(line.size());
}

bool Recorder::IsFullWith(const std::string& line) const {
    const auto after = written_ + static_cast<std::int64_t>(line.size());
    return options_.LimitBytes > 0 && after > options_.LimitBytes && written_ > headLength_;
}

// A file that is full gives way to a new one.
void Recorder::BeginNext(std::int64_t utc) {
    CloseFile();
    if (std::rename(path_.c_str(), PathBefore(path_).c_str()) != 0)
        ThrowReason(PathBefore(path_));
    head_.Utc = utc;
    Begin(false);
}

void Recorder::WriteTraffic(const LineTraffic& traffic) {
    std::string line = RecordingLine(traffic, traffic.Echo && !echoTold_);
    if (IsFullWith(line)) {
        BeginNext(traffic.Utc);
        line = RecordingLine(traffic, traffic.Echo);
    }
    Write(line);
    echoTold_ = echoTold_ || traffic.Echo;
}

void Recorder::Passed(const LineTraffic& traffic) {
    if (file_ < 0)
        return;
    try {
        if (traffic.Outcome != TrafficOutcome::Stray || traffic.Received.size() <= LongestStray)
            return WriteTraffic(traffic);
        LineTraffic piece = traffic; // so that no line is longer than readers take
        for (std::size_t start = 0; start < traffic.Received.size(); start += LongestStray) {
            piece.Received = traffic.Received.substr(start, LongestStray);
            WriteTraffic(piece);
        }
    } catch (const RuntimeFailure& failure) {
        CloseFile();
        failure_ = failure.what() + std::string(" Nothing is recorded any more.");
        Failed();
    }
}

void Recorder::End() {
    if (file_ < 0)
        return;
    const bool kept = WaitForDisk(file_);
    const int reason = errno;
    CloseFile();
    if (kept)
        return;
    failure_ = Subject(path_) + std::generic_category().message(reason) + ".";
    Failed();
}

void Recorder::CloseFile() {
    if (file_ >= 0)
        close(std::exchange(file_, -1));
}

} // namespace kavro
