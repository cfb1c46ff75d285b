#include "ports/append_file.h"

#include "ports/write_through.h"

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace kavro {

namespace {

constexpr mode_t Rights = 0666; // less what the user's mask takes away

std::error_code LastError() {
    return {errno, std::generic_category()};
}

class PosixAppendFile : public AppendFile {
public:
    explicit PosixAppendFile(int file) : file_(file) {}
    ~PosixAppendFile() override { close(file_); }

    std::error_code Write(std::string_view text) override {
        return WriteAll(file_, text) ? std::error_code() : LastError();
    }
    std::error_code WaitForDisk() override {
        return kavro::WaitForDisk(file_) ? std::error_code() : LastError();
    }
    std::int64_t Length() override { return lseek(file_, 0, SEEK_END); }
    void CutTo(std::int64_t length) override {
        [[maybe_unused]] const bool cut = length >= 0 && ftruncate(file_, length) == 0;
    }

private:
    int file_;
};

int FlagsOf(OpenAs as) {
    switch (as) {
    case OpenAs::New:
        return O_CREAT | O_EXCL;
    case OpenAs::Emptied:
        return O_CREAT | O_TRUNC;
    case OpenAs::Unwaiting:
        return O_CREAT | O_TRUNC | O_NONBLOCK;
    case OpenAs::Continued:
        return O_CREAT | O_NONBLOCK;
    case OpenAs::Existing:
        break;
    }
    return 0;
}

} // namespace

OpenedFile OpenAppendFile(const std::string& path, OpenAs as) {
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | FlagsOf(as), Rights);
    if (file < 0)
        return {nullptr, LastError()};
    return {std::make_unique<PosixAppendFile>(file), {}};
}

} // namespace kavro
