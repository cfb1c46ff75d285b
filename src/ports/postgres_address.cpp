#include "ports/postgres_address.h"

#include "link/runtime_failure.h"

#include <QUrl>

namespace kavro {

namespace {

constexpr const char* Scheme = "postgresql";

} // namespace

bool IsPostgresAddress(const std::string& text) {
    const QString start = QString::fromStdString(text).section(':', 0, 0).toLower();
    return text.find(':') != std::string::npos && (start == Scheme || start == "postgres");
}

PostgresAddress ParsePostgresAddress(const std::string& text) {
    const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    // What follows is shown without the address, which may have a password.
    if (url.isValid() && (!url.password().isEmpty() || url.userInfo().contains(':')))
        throw RuntimeFailure(
            "The address of a database has no password here, where everybody could see it. "
            "Put it into ~/.pgpass or the variable PGPASSWORD, as for PostgreSQL's own tools.");
    if (url.hasQuery() || url.hasFragment())
        throw RuntimeFailure("The address of a database ends with its name. Give options as for PostgreSQL's "
                             "own tools, in variables such as PGSSLMODE.");
    const std::string user = url.userName(QUrl::FullyDecoded).toStdString(), host = url.host().toStdString();
    const std::string database = url.path(QUrl::FullyDecoded).mid(1).toStdString();
    if (!url.isValid() || url.scheme() != Scheme || user.empty() || host.empty() || database.empty() ||
        url.port() == 0)
        throw RuntimeFailure(std::string("That is no address of a database. Write it as ") + PostgresForm +
                             ".");
    return {user, host, static_cast<std::uint16_t>(url.port(PostgresAddress().Port)), database};
}

} // namespace kavro
