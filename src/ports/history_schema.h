#pragma once

#include "monitor/kept_history.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <cstdint>
#include <memory>
#include <stdexcept>
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

/// Longest wait for another program that has the file locked.
inline constexpr int HistoryBusyMs = 250;

/// What SQLite says when it cannot do something, with its result code.
class SqlFailure : public std::runtime_error {
public:
    SqlFailure(const std::string& reason, int code) : std::runtime_error(reason), Code(code) {}
    int Code; ///< of SQLite, without its extension: 5 busy, 13 full
};

/// A connection to a history file, used in the thread that made it alone. Its queries go before it does.
class HistoryConnection {
public:
    enum class Access {
        Make,  ///< reads and writes; a file that is missing or empty becomes a history
        Write, ///< reads and writes a history that is there
        Read,  ///< reads a history that is there, also while another program writes it
    };

    /// Opens the file. Throws `RuntimeFailure`, which says what to do, when it cannot be opened, is no
    /// history or one of a later version, and when the driver is not installed.
    HistoryConnection(const std::string& path, Access access);

    /// A statement, prepared; it moves forward only. Throws `SqlFailure`.
    QSqlQuery Prepared(const char* sql) const;

    /// Runs a statement. Throws `SqlFailure`.
    void Run(const char* sql) const;

    /// How long other programs are waited for that write the file; `HistoryBusyMs` to begin with.
    void WaitForOthers(int ms) const;

    /// Whether commits wait for the disk from now on. Those that do not are safe when the program is killed,
    /// and are on the disk with the next one that waits; the file is whole in either case.
    void WaitForDisk(bool wait) const;

private:
    // Open while it lives.
    struct Handle {
        Handle();
        ~Handle();
        Handle(const Handle&) = delete;
        Handle& operator=(const Handle&) = delete;
        QSqlDatabase Database;
    };

    void Open(const std::string& path, Access access);
    void Check(const std::string& path, Access access);
    void MakeTables();
    void BeSafe();
    int Number(const char* sql) const;

    std::unique_ptr<Handle> handle_;
};

/// Whether another program holds the file.
bool IsLocked(const SqlFailure& failure);

/// A transaction that writes: all that is run on the connection until `Commit`, or none of it. Throws
/// `SqlFailure`.
class Transaction {
public:
    explicit Transaction(const HistoryConnection& connection) : connection_(connection) {
        connection_.Run("BEGIN IMMEDIATE");
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    const HistoryConnection& connection_;
    bool done_ = false;
};

/// Binds the values in order and runs the query. Throws `SqlFailure`.
void RunWith(QSqlQuery& query, const std::vector<QVariant>& values);

/// Goes to the next row; false behind the last. Throws `SqlFailure`.
bool NextRow(QSqlQuery& query);

/// A text of a row, and one to be bound.
std::string TextAt(const QSqlQuery& query, int column);
QVariant BoundText(const std::string& text);

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
