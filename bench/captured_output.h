#pragma once

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace kavro {

/// Keeps standard output, and throws standard error away, until it goes out of scope.
class CapturedOutput {
public:
    CapturedOutput() : file_(memfd_create("captured", 0)), nothing_(open("/dev/null", O_WRONLY)) {
        std::fflush(stdout);
        dup2(file_, STDOUT_FILENO);
        dup2(nothing_, STDERR_FILENO);
    }
    ~CapturedOutput() {
        Take();
        dup2(output_, STDOUT_FILENO);
        dup2(error_, STDERR_FILENO);
        for (const int file : {file_, nothing_, output_, error_})
            close(file);
    }
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// What was printed since the last call.
    std::string Take() {
        std::fflush(stdout);
        std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_CUR)), '\0');
        if (pread(file_, text.data(), text.size(), 0) < 0 || ftruncate(file_, 0) != 0)
            text.clear();
        lseek(file_, 0, SEEK_SET);
        return text;
    }

private:
    const int output_ = dup(STDOUT_FILENO), error_ = dup(STDERR_FILENO); // before they are replaced
    const int file_, nothing_;
};

} // namespace kavro
