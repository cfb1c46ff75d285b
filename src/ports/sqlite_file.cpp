#include "ports/sqlite_file.h"

#include "link/runtime_failure.h"

#include <QFileInfo>

namespace kavro {

namespace {

const char* ModeOf(SqliteFile::Access access) {
    constexpr const char* modes[] = {"rwc", "rw", "ro"};
    return modes[static_cast<std::size_t>(access)];
}

} // namespace

SqliteFile::SqliteFile(const SqliteKind& kind, const std::string& path, Access access)
    : SqlConnection(SqliteDriver), kind_(kind), path_(path) {
    RequireFile(access);
    try {
        Open(access);
        Check(access);
        if (access != Access::Read)
            BeSafe();
    } catch (const SqlFailure& failure) {
        RefuseFor(failure);
    }
}

void SqliteFile::Refuse(const std::string& why) const {
    throw RuntimeFailure("The " + std::string(kind_.Name) + " " + path_ + " " + why);
}

void SqliteFile::RefuseFor(const SqlFailure& failure) const {
    if (failure.Code == SqliteNoDatabase)
        Refuse("cannot be used: the file is not a SQLite database. Name another file.");
    if (IsLocked(failure))
        Refuse("cannot be opened: another program has it locked. End that program, or name another file.");
    Refuse("cannot be opened: " + std::string(failure.what()) +
           ". Check the file, its folder and the rights to them, or name another file.");
}

// What the system would tell less clearly, or not at all.
void SqliteFile::RequireFile(Access access) const {
    const QFileInfo file(QString::fromStdString(path_));
    const bool make = access == Access::Make;
    if (file.isDir())
        Refuse("cannot be used: it is a folder. Name a file.");
    if (file.exists() && !file.isFile())
        Refuse("cannot be used: it is no regular file. Name another file.");
    if (!file.exists() && !make)
        Refuse("cannot be opened: there is no such file.");
    if (!file.exists() && !QFileInfo(file.path()).isDir())
        Refuse("cannot be made: its folder does not exist. Make the folder, or name another file.");
    if (file.exists() && !file.isReadable())
        Refuse("cannot be opened: the rights to read it are missing.");
    if (file.exists() && access != Access::Read && !file.isWritable())
        Refuse("cannot be written: it is read-only. Change that, or name another file.");
}

void SqliteFile::Open(Access access) {
    OpenSqlite(path_, ModeOf(access));
    if (access != Access::Read || QFileInfo::exists(QString::fromStdString(path_ + "-wal")))
        return;
    // A file that nobody writes, where SQLite may not put its two files beside it.
    try {
        Number("PRAGMA application_id");
    } catch (const SqlFailure& failure) {
        if (failure.Code == SqliteNoDatabase || IsLocked(failure))
            throw;
        Database.close();
        OpenSqlite(path_, "ro&immutable=1");
    }
}

void SqliteFile::Check(Access access) {
    const auto application = Number("PRAGMA application_id");
    if (application == 0 && access == Access::Make && Number("SELECT count(*) FROM sqlite_master") == 0) {
        Run(("PRAGMA page_size = " + std::to_string(kind_.PageBytes)).c_str());
        MakeTables();
        return;
    }
    if (application != kind_.Application)
        Refuse("cannot be used: it is no " + std::string(kind_.Name) +
               " but a file of another program. Name another file.");
    if (Number("PRAGMA user_version") > kind_.Version)
        Refuse("cannot be used: a later version of this program made it. Use that version, or name another "
               "file.");
}

// All of it or nothing; another program may be making the same file.
void SqliteFile::MakeTables() {
    Transaction transaction(*this);
    if (Number("PRAGMA application_id") == 0) {
        for (const char* table : kind_.Tables)
            Run(table);
        Run(("PRAGMA application_id = " + std::to_string(kind_.Application)).c_str());
        Run(("PRAGMA user_version = " + std::to_string(kind_.Version)).c_str());
    }
    transaction.Commit();
}

// What is committed is on the disk, and those who read hold nobody up.
void SqliteFile::BeSafe() {
    try {
        Run("PRAGMA journal_mode = WAL");
    } catch (const SqlFailure& failure) {
        if (!IsLocked(failure)) // by whoever does the same
            throw;
    }
    WaitForDisk(true);
    Run("PRAGMA journal_size_limit = 16777216");
}

} // namespace kavro
