#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <vector>

class QSqlError;

namespace kavro {

/// Longest wait for another program that has a SQLite file locked.
inline constexpr int SqliteBusyMs = 250;

/// What a database says when it cannot do something, with its code.
class SqlFailure : public std::runtime_error {
public:
    SqlFailure(const std::string& reason, std::string state)
        : std::runtime_error(reason), Code(std::atoi(state.c_str()) & 0xFF), State(std::move(state)) {}
    int Code;          ///< of SQLite, without its extension: 5 busy, 13 full
    std::string State; ///< as the database has it: a number of SQLite; may be empty
};

/// SQLite's code of a full disk, and of a file of another kind.
inline constexpr int SqliteFull = 13, SqliteNoDatabase = 26;

/// Whether another program holds a SQLite file.
bool IsLocked(const SqlFailure& failure);

[[noreturn]] void ThrowSql(const QSqlError& error);

/// One of Qt's drivers.
struct SqlDriver {
    const char* Name;    ///< as Qt has it
    const char* For;     ///< "SQLite"
    const char* Package; ///< of Debian, which has it
};

/// A connection to a database by one of Qt's drivers, used in the thread that made it alone. Its queries go
/// before it does.
class SqlConnection {
public:
    /// Not open. Throws `RuntimeFailure` when the driver is not installed.
    explicit SqlConnection(const SqlDriver& driver);
    virtual ~SqlConnection();
    SqlConnection(const SqlConnection&) = delete;
    SqlConnection& operator=(const SqlConnection&) = delete;

    /// A statement, prepared; it moves forward only. Throws `SqlFailure`.
    QSqlQuery Prepared(const char* sql) const;

    /// Runs a statement. Throws `SqlFailure`.
    void Run(const char* sql) const;

    /// Runs a statement with these values, bound in order, and hands over what it gives. Throws `SqlFailure`.
    virtual QSqlQuery Ran(const char* sql, const std::vector<QVariant>& values) const;

    /// The first number that a statement gives; 0 when it gives none. Throws `SqlFailure`.
    qlonglong Number(const char* sql) const;

    /// False when it was lost.
    bool IsOpen() const { return Database.isOpen(); }

    /// How long other programs are waited for that write a SQLite file; `SqliteBusyMs` to begin with.
    void WaitForOthers(int ms) const;

    /// Whether commits to a SQLite file wait for the disk from now on. Those that do not are safe when the
    /// program is killed, and are on the disk with the next one that waits; the file is whole in either case.
    void WaitForDisk(bool wait) const;

protected:
    /// Opens a SQLite file: `mode` is what SQLite has in its addresses, "rwc", "rw" or "ro". Throws
    /// `SqlFailure`.
    void OpenSqlite(const std::string& path, const char* mode);

    QSqlDatabase Database;
};

/// A transaction that writes: all that is run on the connection until `Commit`, or none of it. Throws
/// `SqlFailure`.
class Transaction {
public:
    explicit Transaction(const SqlConnection& connection, const char* begin = "BEGIN IMMEDIATE")
        : connection_(connection) {
        connection_.Run(begin);
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void Commit();

private:
    const SqlConnection& connection_;
    bool done_ = false;
};

/// Binds the values in order and runs the query. Throws `SqlFailure`.
void RunWith(QSqlQuery& query, const std::vector<QVariant>& values);

/// Goes to the next row; false behind the last. Throws `SqlFailure`.
bool NextRow(QSqlQuery& query);

/// A text of a row, and one to be bound.
std::string TextAt(const QSqlQuery& query, int column);
QVariant BoundText(const std::string& text);

} // namespace kavro
