#include "ports/sql_connection.h"

#include "link/runtime_failure.h"

#include <QFileInfo>
#include <QSqlError>
#include <QUrl>
#include <QUuid>

namespace kavro {

bool IsLocked(const SqlFailure& failure) {
    constexpr int busy = 5, locked = 6;
    return failure.Code == busy || failure.Code == locked;
}

void ThrowSql(const QSqlError& error) {
    const QString words = error.databaseText().isEmpty() ? error.driverText() : error.databaseText();
    throw SqlFailure(words.trimmed().toStdString(), error.nativeErrorCode().toStdString());
}

SqlConnection::SqlConnection(const SqlDriver& driver) {
    if (!QSqlDatabase::isDriverAvailable(driver.Name))
        throw RuntimeFailure(std::string("Qt's driver for ") + driver.For +
                             " is not installed. Install the package " + driver.Package + ".");
    Database = QSqlDatabase::addDatabase(driver.Name, QUuid::createUuid().toString(QUuid::WithoutBraces));
}

SqlConnection::~SqlConnection() {
    const QString name = Database.connectionName();
    Database.close();
    Database = {};
    QSqlDatabase::removeDatabase(name);
}

void SqlConnection::OpenSqlite(const std::string& path, const char* mode) {
    QUrl url = QUrl::fromLocalFile(QFileInfo(QString::fromStdString(path)).absoluteFilePath());
    url.setQuery(QString("mode=") + mode);
    Database.setConnectOptions(QString("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(SqliteBusyMs));
    Database.setDatabaseName(url.toString(QUrl::FullyEncoded));
    if (!Database.open())
        ThrowSql(Database.lastError());
}

QSqlQuery SqlConnection::Prepared(const char* sql) const {
    QSqlQuery query(Database);
    query.setForwardOnly(true);
    if (!query.prepare(sql))
        ThrowSql(query.lastError());
    return query;
}

void SqlConnection::Run(const char* sql) const {
    QSqlQuery query(Database);
    if (!query.exec(sql))
        ThrowSql(query.lastError());
}

QSqlQuery SqlConnection::Ran(const char* sql, const std::vector<QVariant>& values) const {
    QSqlQuery query = Prepared(sql);
    RunWith(query, values);
    return query;
}

qlonglong SqlConnection::Number(const char* sql) const {
    QSqlQuery query = Ran(sql, {});
    return NextRow(query) ? query.value(0).toLongLong() : 0;
}

void SqlConnection::WaitForOthers(int ms) const {
    Run(("PRAGMA busy_timeout = " + std::to_string(ms)).c_str());
}

void SqlConnection::WaitForDisk(bool wait) const {
    Run(wait ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

Transaction::~Transaction() {
    if (done_ || !connection_.IsOpen())
        return;
    try {
        connection_.Run("ROLLBACK");
    } catch (const SqlFailure&) { // the database has done it itself
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

} // namespace kavro
