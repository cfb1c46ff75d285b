#include "terminal/command_log.h"

#include "link/runtime_failure.h"
#include "link/text.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace kavro {

void CommandLog::Open(const std::string& path) {
    Close();
    path_ = path;
    file_.clear();
    std::error_code ignored;
    if (std::filesystem::is_fifo(std::filesystem::u8path(path), ignored)) // opening one waits for a reader
        throw RuntimeFailure("The log file " + path + " is a pipe. Choose a file.");
    errno = 0;
    file_.open(path, std::ios::trunc);
    if (!file_.is_open())
        throw RuntimeFailure("The log file " + path + " cannot be opened: " + std::strerror(errno) + ".");
}

void CommandLog::Close() {
    if (file_.is_open())
        file_.close();
    path_.clear();
}

void CommandLog::Write(const std::string& command) {
    if (!IsOpen())
        return;
    errno = 0;
    file_ << Trim(command) << '\n' << std::flush;
    if (file_.good())
        return;
    const std::string reason = std::strerror(errno);
    const std::string path = path_;
    Close();
    throw RuntimeFailure("The log file " + path + " cannot be written: " + reason +
                         ". Logging is off. Free space or choose another file, and switch it on again.");
}

} // namespace kavro
