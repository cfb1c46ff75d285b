#include "ports/history_schema.h"

namespace kavro {

namespace {

constexpr SqliteKind HistoryKind = {"history", HistoryApplication, HistoryVersion, HistoryTables};

} // namespace

HistoryConnection::HistoryConnection(const std::string& path, Access access)
    : SqliteFile(HistoryKind, path, access) {}

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
