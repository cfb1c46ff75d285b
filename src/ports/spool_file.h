#pragma once

#include "ports/sqlite_file.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// How a spool tells that it is one: SQLite's application_id ("KASP") and user_version.
inline constexpr int SpoolApplication = 0x4B415350;
inline constexpr int SpoolVersion = 1;

/// The tables of a spool. `time`, "from" and "to" are UTC in milliseconds since 1970.
///
/// The ids of `waiting` rise with each row and are never used again, whatever a power cut or an older copy of
/// the file takes back: those of a run of the program begin at 2^32 times the second in which it began, or
/// behind the run before. Times come first in the key, as rows do: a turn then writes one page of it.
inline constexpr const char* SpoolTables[] = {
    "CREATE TABLE spool (id TEXT NOT NULL, line TEXT NOT NULL, run INTEGER NOT NULL)",
    "CREATE TABLE waiting (id INTEGER PRIMARY KEY, address INTEGER NOT NULL, model TEXT NOT NULL, "
    "channel TEXT NOT NULL, time INTEGER NOT NULL, value REAL, text TEXT NOT NULL, unit TEXT NOT NULL, "
    "state TEXT NOT NULL, UNIQUE (time, address, channel))",
    "CREATE TABLE outlets (name TEXT PRIMARY KEY, done INTEGER NOT NULL, lost INTEGER NOT NULL)",
    "CREATE TABLE gaps (outlet TEXT NOT NULL, \"from\" INTEGER NOT NULL, \"to\" INTEGER NOT NULL, "
    "lost INTEGER NOT NULL, reason TEXT NOT NULL, PRIMARY KEY (outlet, \"from\", reason))",
};

/// A reading that waits.
struct SpoolRow {
    std::int64_t Id = 0; ///< rises with each row, also over many runs of the program
    std::int64_t UnixMs = 0;
    std::int16_t Address = 0;
    std::string Model, Channel;
    std::optional<double> Number; ///< only when `State` is "ok"
    std::string Text, Unit;
    std::string State; ///< of `StateText`
};

/// Readings that are lost.
struct SpoolGap {
    std::int64_t FromMs = 0, ToMs = 0; ///< the first and the last of them
    std::int64_t Lost = 0;             ///< how many
    std::string Reason;
};

/// A connection to a spool.
class SpoolConnection : public SqliteFile {
public:
    /// Opens the file. Throws `RuntimeFailure`, as a `SqliteFile` does. What is committed outlasts a kill,
    /// but not always a power cut.
    SpoolConnection(const std::string& path, Access access);
};

/// A lock on a spool as long as it lives: one program alone may use the file. A kill takes it off.
class SpoolLock {
public:
    /// Throws `RuntimeFailure` when another program has it, or the file cannot be made.
    explicit SpoolLock(const std::string& path);
    ~SpoolLock();
    SpoolLock(const SpoolLock&) = delete;
    SpoolLock& operator=(const SpoolLock&) = delete;

private:
    int file_ = -1;
};

} // namespace kavro
