#include "ports/history_schema.h"

#include "link/runtime_failure.h"

#include <QFileInfo>
#include <QSqlError>
#include <QUrl>
#include <QUuid>

namespace kavro {

namespace {

constexpr const char* Driver = "QSQLITE";
constexpr int NoDatabase = 26; // what SQLite says of a file of another kind

[[noreturn]] void ThrowSql(const QSqlError& error) {
    const QString words = error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
    throw SqlFailure(words.trimmed().toStdString(), error.nativeErrorCode().toInt() & 0xFF);
}

[[noreturn]] void Refuse(const std::string& path, const std::string& why) {
    throw RuntimeFailure("The history " + path + " " + why);
}

[[noreturn]] void RefuseFor(const std::string& path, const SqlFailure& failure) {
    if (failure.Code == NoDatabase)
        Refuse(path, "cannot be used: the file is not a SQLite database. Name another file.");
    if (IsLocked(failure))
        Refuse(path, "cannot be opened: another program has it locked. End that program, or name another "
                     "file.");
    Refuse(path, "cannot be opened: " + std::string(failure.what()) +
                     ". Check the file, its folder and the rights to them, or name another file.");
}

// What the system would tell less clearly, or not at all.
void RequireFile(const std::string& path, HistoryConnection::Access access) {
    if (!QSqlDatabase::isDriverAvailable(Driver))
        throw RuntimeFailure("A history needs Qt's driver for SQLite, which is not installed. Install the "
                             "package libqt6sql6-sqlite.");
    const QFileInfo file(QString::fromStdString(path));
    const bool make = access == HistoryConnection::Access::Make;
    if (file.isDir())
        Refuse(path, "cannot be used: it is a folder. Name a file.");
    if (file.exists() && !file.isFile())
        Refuse(path, "cannot be used: it is no regular file. Name another file.");
    if (!file.exists() && !make)
        Refuse(path, "cannot be opened: there is no such file.");
    if (!file.exists() && !QFileInfo(file.path()).isDir())
        Refuse(path, "cannot be made: its folder does not exist. Make the folder, or name another file.");
    if (file.exists() && !file.isReadable())
        Refuse(path, "cannot be opened: the rights to read it are missing.");
    if (file.exists() && access != HistoryConnection::Access::Read && !file.isWritable())
        Refuse(path, "cannot be written: it is read-only. Change that, or name another file.");
}

std::string Address(const std::string& path, const char* mode) {
    QUrl url = QUrl::fromLocalFile(QFileInfo(QString::fromStdString(path)).absoluteFilePath());
    url.setQuery(QString("mode=") + mode);
    return url.toString(QUrl::FullyEncoded).toStdString();
}

const char* ModeOf(HistoryConnection::Access access) {
    constexpr const char* modes[] = {"rwc", "rw", "ro"};
    return modes[static_cast<std::size_t>(access)];
}

} // namespace

HistoryConnection::Handle::Handle()
    : Database(QSqlDatabase::addDatabase(Driver, QUuid::createUuid().toString(QUuid::WithoutBraces))) {}

HistoryConnection::Handle::~Handle() {
    const QString name = Database.connectionName();
    Database.close();
    Database = {};
    QSqlDatabase::removeDatabase(name);
}

HistoryConnection::HistoryConnection(const std::string& path, Access access) {
    RequireFile(path, access);
    handle_ = std::make_unique<Handle>();
    try {
        Open(path, access);
        Check(path, access);
        if (access != Access::Read)
            BeSafe();
    } catch (const SqlFailure& failure) {
        RefuseFor(path, failure);
    }
}

void HistoryConnection::Open(const std::string& path, Access access) {
    QSqlDatabase& database = handle_->Database;
    database.setConnectOptions(QString("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(HistoryBusyMs));
    database.setDatabaseName(QString::fromStdString(Address(path, ModeOf(access))));
    if (!database.open())
        ThrowSql(database.lastError());
    if (access != Access::Read || QFileInfo::exists(QString::fromStdString(path + "-wal")))
        return;
    // A file that nobody writes, where SQLite may not put its two files beside it.
    try {
        Number("PRAGMA application_id");
    } catch (const SqlFailure& failure) {
        if (failure.Code == NoDatabase || IsLocked(failure))
            throw;
        database.close();
        database.setDatabaseName(QString::fromStdString(Address(path, "ro&immutable=1")));
        if (!database.open())
            ThrowSql(database.lastError());
    }
}

void HistoryConnection::Check(const std::string& path, Access access) {
    const int application = Number("PRAGMA application_id");
    if (application == 0 && access == Access::Make && Number("SELECT count(*) FROM sqlite_master") == 0) {
        MakeTables();
        return;
    }
    if (application != HistoryApplication)
        Refuse(path, "cannot be used: it is no history but a file of another program. Name another file.");
    if (Number("PRAGMA user_version") > HistoryVersion)
        Refuse(path, "cannot be used: a later version of this program made it. Use that version, or name "
                     "another file.");
}

// All of it or nothing; another program may be making the same file.
void HistoryConnection::MakeTables() {
    Transaction transaction(*this);
    if (Number("PRAGMA application_id") == 0) {
        for (const char* table : HistoryTables)
            Run(table);
        Run(("PRAGMA application_id = " + std::to_string(HistoryApplication)).c_str());
        Run(("PRAGMA user_version = " + std::to_string(HistoryVersion)).c_str());
    }
    transaction.Commit();
}

// What is committed is on the disk, and those who read hold nobody up.
void HistoryConnection::BeSafe() {
    try {
        Run("PRAGMA journal_mode = WAL");
    } catch (const SqlFailure& failure) {
        if (!IsLocked(failure)) // by whoever does the same
            throw;
    }
    WaitForDisk(true);
    Run("PRAGMA journal_size_limit = 16777216");
}

QSqlQuery HistoryConnection::Prepared(const char* sql) const {
    QSqlQuery query(handle_->Database);
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        ThrowSql(query.lastError());
    return query;
}

void HistoryConnection::Run(const char* sql) const {
    QSqlQuery query(handle_->Database);
    if (!query.exec(sql))
        ThrowSql(query.lastError());
}

void HistoryConnection::WaitForDisk(bool wait) const {
    Run(wait ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

void HistoryConnection::WaitForOthers(int ms) const {
    Run(("PRAGMA busy_timeout = " + std::to_string(ms)).c_str());
}

int HistoryConnection::Number(const char* sql) const {
    QSqlQuery query = Prepared(sql);
    RunWith(query, {});
    return NextRow(query) ? query.value(0).toInt() : 0;
}

bool IsLocked(const SqlFailure& failure) {
    constexpr int busy = 5, locked = 6;
    return failure.Code == busy || failure.Code == locked;
}

Transaction::~Transaction() {
    if (done_)
        return;
    try {
        connection_.Run("ROLLBACK");
    } catch (const SqlFailure&) { // SQLite has done it itself
    }
}

void Transaction::Commit() {
    connection_.Run("COMMIT");
    done_ = true;
}

void RunWith(QSqlQuery& query, const std::vector<QVariant>& values) {
    for (std::size_t place = 0; place < values.size(); ++place)
        query.bindValue(static_cast<int>(place), values[place]);
    if (!query.exec())
        ThrowSql(query.lastError());
}

bool NextRow(QSqlQuery& query) {
    if (query.next())
        return true;
    if (query.lastError().isValid())
        ThrowSql(query.lastError());
    return false;
}

std::string TextAt(const QSqlQuery& query, int column) {
    return query.value(column).toString().toStdString();
}

QVariant BoundText(const std::string& text) {
    return text.empty() ? QString("") : QString::fromStdString(text); // a null text would be NULL
}

// One look each: SQLite would walk over all readings of a value for a comparison of all three at once.
std::vector<HistoryValue> ValuesIn(const HistoryConnection& connection) {
    QSqlQuery channel = connection.Prepared("SELECT line, address, channel FROM readings WHERE line = ? AND "
                                            "address = ? AND channel > ? ORDER BY channel LIMIT 1");
    QSqlQuery address = connection.Prepared("SELECT line, address, channel FROM readings WHERE line = ? AND "
                                            "address > ? ORDER BY address, channel LIMIT 1");
    QSqlQuery line =
        connection.Prepared("SELECT line, address, channel FROM readings WHERE line > ? ORDER BY "
                            "line, address, channel LIMIT 1");
    std::vector<HistoryValue> values;
    HistoryValue last;
    const auto found = [&](QSqlQuery& next, std::size_t known) {
        std::vector<QVariant> keys = {BoundText(last.Line), qlonglong{last.Address}, BoundText(last.Channel)};
        keys.resize(known);
        RunWith(next, keys);
        if (!NextRow(next))
            return false;
        last = {TextAt(next, 0), next.value(1).toLongLong(), TextAt(next, 2)};
        values.push_back(last);
        next.finish();
        return true;
    };
    while (found(channel, 3) || found(address, 2) || found(line, 1)) {
    }
    return values;
}

} // namespace kavro
