#include "ports/append_file.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

namespace kavro {

namespace {

std::error_code LastError() {
    return {errno, std::generic_category()};
}

class WindowsAppendFile : public AppendFile {
public:
    explicit WindowsAppendFile(int file) : file_(file) {}
    ~WindowsAppendFile() override { _close(file_); }

    std::error_code Write(std::string_view text) override {
        while (!text.empty()) {
            const int written = _write(file_, text.data(), static_cast<unsigned>(text.size()));
            if (written == 0)
                return std::make_error_code(std::errc::io_error); // nothing was said of why
            if (written < 0)
                return LastError();
            text.remove_prefix(static_cast<std::size_t>(written));
        }
        return {};
    }
    std::error_code WaitForDisk() override {
        return _commit(file_) == 0 || errno == EINVAL ? std::error_code() : LastError();
    }
    std::int64_t Length() override { return _lseeki64(file_, 0, SEEK_END); }
    void CutTo(std::int64_t length) override { _chsize_s(file_, length); }

private:
    int file_;
};

int FlagsOf(OpenAs as) {
    if (as == OpenAs::Existing)
        return 0;
    if (as == OpenAs::Continued)
        return _O_CREAT;
    return _O_CREAT | (as == OpenAs::New ? _O_EXCL : _O_TRUNC);
}

} // namespace

OpenedFile OpenAppendFile(const std::string& path, OpenAs as) {
    int file = -1;
    const int flags = _O_WRONLY | _O_APPEND | _O_BINARY | _O_NOINHERIT | FlagsOf(as);
    if (_wsopen_s(&file, std::filesystem::u8path(path).c_str(), flags, _SH_DENYNO, _S_IREAD | _S_IWRITE) != 0)
        return {nullptr, LastError()};
    return {std::make_unique<WindowsAppendFile>(file), {}};
}

} // namespace kavro
