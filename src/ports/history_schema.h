#pragma once

#include "monitor/kept_history.h"
#include "ports/sqlite_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// How a history file tells that it is one: SQLite's application_id ("KAVR") and user_version.
inline constexpr int HistoryApplication = 0x4B415652;
inline constexpr int HistoryVersion = 1;

/// The tables of a history. `time`, "from" and "to" are UTC as `UtcMsText` has it, so that their order as
/// texts is that of time. The key of `readings` keeps all readings of a value together, in order of time, and
/// is the table itself: a value over a week is one range of it, and no index doubles the file.
inline constexpr const char* HistoryTables[] = {
    "CREATE TABLE readings (line TEXT NOT NULL, address INTEGER NOT NULL, model TEXT NOT NULL, "
    "channel TEXT NOT NULL, time TEXT NOT NULL, value REAL, text TEXT NOT NULL, unit TEXT NOT NULL, "
    "state TEXT NOT NULL, PRIMARY KEY (line, address, channel, time)) WITHOUT ROWID",
    "CREATE TABLE gaps (line TEXT NOT NULL, \"from\" TEXT NOT NULL, \"to\" TEXT NOT NULL, "
    "lost INTEGER NOT NULL, reason TEXT NOT NULL)",
};

/// A connection to a history file.
class HistoryConnection : public SqliteFile {
public:
    /// Opens the file. Throws `RuntimeFailure`, as a `SqliteFile` does.
    HistoryConnection(const std::string& path, Access access);
};

/// Names a value of a history.
struct HistoryValue {
    std::string Line;
    std::int64_t Address = 0;
    std::string Channel;
};

/// The values that a history has, in order; each costs one look into the key, not a look at its readings.
/// Throws `SqlFailure`.
std::vector<HistoryValue> ValuesIn(const HistoryConnection& connection);

} // namespace kavro
