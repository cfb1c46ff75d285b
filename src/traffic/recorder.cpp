#include "traffic/recorder.h"

#include "link/runtime_failure.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace kavro {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t LongestStray = 65536; // bytes a line

std::string Subject(const std::string& path) {
    return "The recording \"" + path + "\" cannot be written: ";
}

[[noreturn]] void ThrowReason(const std::string& path, const std::error_code& error) {
    throw RuntimeFailure(Subject(path) + error.message() +
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

Recorder::Recorder(FileOpener opener, const std::string& path, RecordingHead head,
                   const RecorderOptions& options)
    : opener_(std::move(opener)), path_(path), head_(std::move(head)), options_(options) {
    RequireRecordable(path_, options_);
    Begin(options_.Overwrite);
}

Recorder::~Recorder() {
    Failed = [] {}; // nobody is there any more to be told
    End();
}

void Recorder::Begin(bool overwrite) {
    OpenedFile opened = opener_(path_, overwrite ? OpenAs::Emptied : OpenAs::New);
    if (!opened.File)
        ThrowReason(path_, opened.Error);
    file_ = std::move(opened.File);
    written_ = 0;
    echoTold_ = false;
    Write(RecordingHeadLine(head_));
    headLength_ = written_;
}

// A line goes out in one piece, so that a program that is killed leaves whole lines.
void Recorder::Write(const std::string& line) {
    if (const std::error_code error = file_->Write(line))
        ThrowReason(path_, error);
    written_ += static_cast<std::int64_t>(line.size());
}

bool Recorder::IsFullWith(const std::string& line) const {
    const auto after = written_ + static_cast<std::int64_t>(line.size());
    return options_.LimitBytes > 0 && after > options_.LimitBytes && written_ > headLength_;
}

// A file that is full gives way to a new one.
void Recorder::BeginNext(std::int64_t utc) {
    file_.reset();
    std::error_code error;
    fs::rename(fs::u8path(path_), fs::u8path(PathBefore(path_)), error);
    if (error)
        ThrowReason(PathBefore(path_), error);
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
    if (!file_)
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
        file_.reset();
        failure_ = failure.what() + std::string(" Nothing is recorded any more.");
        Failed();
    }
}

void Recorder::End() {
    if (!file_)
        return;
    const std::error_code error = file_->WaitForDisk();
    file_.reset();
    if (!error)
        return;
    failure_ = Subject(path_) + error.message() + ".";
    Failed();
}

} // namespace kavro
