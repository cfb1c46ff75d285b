#include "ports/whole_file.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include "ports/write_through.h"

#include <cerrno>
#include <chrono>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#else
#include <QSaveFile>
#endif

namespace kavro {

#ifdef Q_OS_UNIX

namespace {

namespace fs = std::filesystem;

constexpr std::string_view TemporaryEnd = ".kavro-tmp";
constexpr int CreateAttempts = 10;

// "admin.map.4711-8213056.kavro-tmp": by process and time, never the same twice.
fs::path TemporaryPath(const fs::path& target) {
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path path = target;
    return path += "." + std::to_string(getpid()) + "-" + std::to_string(now) + std::string(TemporaryEnd);
}

bool IsTemporaryOf(const fs::path& target, std::string_view name) {
    const std::string start = target.filename().string() + ".";
    if (!name.starts_with(start) || !name.ends_with(TemporaryEnd) ||
        name.size() <= start.size() + TemporaryEnd.size())
        return false;
    name.remove_prefix(start.size());
    name.remove_suffix(TemporaryEnd.size());
    return name.find_first_not_of("0123456789-") == std::string_view::npos;
}

// A file that takes the place of its target, or goes again. It is locked as long as it is written: one
// without a lock was left behind by a program that was killed. Every step is false, with the reason in errno,
// when it fails.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target) : target_(target) {}
    ~TemporaryFile() { Close(true); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool Create();
    bool TakeRights() const;
    bool Write(const std::string& content) const { return WriteThrough(file_, content); }
    bool TakePlace();

private:
    void Close(bool remove);

    const fs::path& target_;
    fs::path path_;
    int file_ = -1;
};

bool TemporaryFile::Create() {
    for (int attempt = 0; attempt < CreateAttempts; ++attempt) {
        path_ = TemporaryPath(target_);
        file_ = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        struct stat state {};
        // Where the file system knows no locks, nothing is ever taken for left behind.
        if (file_ < 0 || flock(file_, LOCK_EX) != 0 || fstat(file_, &state) != 0 || state.st_nlink > 0)
            return file_ >= 0;
        Close(false); // before it was locked another save took it for left behind
    }
    errno = EBUSY;
    return false;
}

// Those of the file to be replaced; one that may not be written is not replaced either.
bool TemporaryFile::TakeRights() const {
    struct stat state {};
    if (stat(target_.c_str(), &state) != 0)
        return errno == ENOENT;
    return access(target_.c_str(), W_OK) == 0 && fchmod(file_, state.st_mode & 07777) == 0;
}

bool TemporaryFile::TakePlace() {
    if (rename(path_.c_str(), target_.c_str()) != 0)
        return false;
    Close(false);
    return true;
}

void TemporaryFile::Close(bool remove) {
    if (file_ < 0)
        return;
    if (remove)
        unlink(path_.c_str());
    close(file_);
    file_ = -1;
}

void RemoveUnlessLocked(const fs::path& path) {
    const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0)
        return;
    if (flock(file, LOCK_EX | LOCK_NB) == 0)
        unlink(path.c_str());
    close(file);
}

fs::path FolderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void RemoveLeftovers(const fs::path& target) {
    std::error_code ignored; // a folder that cannot be read keeps them
    for (fs::directory_iterator entry(FolderOf(target), ignored), end; entry != end; entry.increment(ignored))
        if (IsTemporaryOf(target, entry->path().filename().string()))
            RemoveUnlessLocked(entry->path());
}

// So that a power failure does not bring the old file back. What this cannot do is no failure of the save.
void SyncFolder(const fs::path& folder) {
    const int file = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return;
    fsync(file);
    close(file);
}

} // namespace

std::string WriteWholeFile(const fs::path& path, const std::string& content) {
    RemoveLeftovers(path);
    TemporaryFile file(path);
    if (!file.Create() || !file.TakeRights() || !file.Write(content) || !file.TakePlace())
        return std::generic_category().message(errno);
    SyncFolder(FolderOf(path));
    return {};
}

#else

std::string WriteWholeFile(const std::filesystem::path& path, const std::string& content) {
    QSaveFile file(QString::fromStdU16String(path.u16string()));
    const auto size = static_cast<qint64>(content.size());
    const bool saved = file.open(QIODevice::WriteOnly) && file.write(content.data(), size) == size &&
                       file.flush() && file.commit();
    return saved ? std::string() : file.errorString().toStdString();
}

#endif

} // namespace kavro
