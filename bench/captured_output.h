#pragma once

#include <cstdio>
#include <string>
#include <utility>

#include <sys/mman.h>
#include <unistd.h>

namespace kavro {

/// Keeps standard output, and throws away what is written to `stderr`, until it goes out of scope. The
/// descriptor of standard error stays as it is: sanitizers write there.
class CapturedOutput {
public:
    CapturedOutput() {
        std::fflush(stdout);
        dup2(file_, STDOUT_FILENO);
    }
    ~CapturedOutput() {
        Take();
        dup2(output_, STDOUT_FILENO);
        close(output_);
        close(file_);
        std::fclose(std::exchange(stderr, error_));
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
    const int output_ = dup(STDOUT_FILENO), file_ = memfd_create("captured", 0);
    std::FILE* const error_ = std::exchange(stderr, std::fopen("/dev/null", "w"));
};

} // namespace kavro
