#pragma once

#include "ports/sql_connection.h"

#include <span>
#include <string>

namespace kavro {

inline constexpr SqlDriver SqliteDriver = {"QSQLITE", "SQLite", "libqt6sql6-sqlite"};

/// What a SQLite file of this program is for.
struct SqliteKind {
    const char* Name;                    ///< "history"
    int Application;                     ///< SQLite's application_id, by which it is known
    int Version;                         ///< its user_version
    std::span<const char* const> Tables; ///< statements that make it
    int PageBytes = 4096;                ///< what is read and written at once
};

/// A connection to such a file, used in the thread that made it alone. Its queries go before it does.
class SqliteFile : public SqlConnection {
public:
    enum class Access {
        Make,  ///< reads and writes; a file that is missing or empty is made
        Write, ///< reads and writes a file that is there
        Read,  ///< reads a file that is there, also while another program writes it
    };

    /// Opens the file; what is written is on the disk when it is committed. Throws `RuntimeFailure`, which
    /// says what to do, when it cannot be opened, is of another kind or a later version, and when the driver
    /// is not installed.
    SqliteFile(const SqliteKind& kind, const std::string& path, Access access);

private:
    void Open(Access access);
    void Check(Access access);
    void MakeTables();
    void BeSafe();
    [[noreturn]] void Refuse(const std::string& why) const;
    [[noreturn]] void RefuseFor(const SqlFailure& failure) const;
    void RequireFile(Access access) const;

    const SqliteKind& kind_;
    std::string path_;
};

} // namespace kavro
