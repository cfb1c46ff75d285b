#include "ports/postgres_destination.h"

#include "link/json_text.h"
#include "link/number_text.h"
#include "link/utc_text.h"

#include <QLibrary>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace kavro {

namespace {

constexpr SqlDriver PostgresDriver = {"QPSQL", "PostgreSQL", "libqt6sql6-psql"};

// A network that is gone without a word is noticed within 20 s, in the sender's thread. A server that hangs
// is waited for: its system goes on to acknowledge.
constexpr const char* Limits = "connect_timeout=5;keepalives_idle=5;keepalives_interval=5;keepalives_count=3;"
                               "tcp_user_timeout=15000";
constexpr const char* StatementLimit = "SET statement_timeout = '20s'";

// One program at a time makes the tables.
constexpr const char* TablesLock = "SELECT pg_advisory_xact_lock(1262575954)";

constexpr const char* InsertRows =
    "INSERT INTO readings (line, address, model, channel, time, value, text, unit, state) "
    "SELECT ?, address, model, channel, time, value, text, unit, state FROM json_to_recordset(?::json) AS "
    "came(address integer, model text, channel text, time timestamptz, value double precision, text text, "
    "unit text, state text) ON CONFLICT DO NOTHING "
    "RETURNING address, channel, (extract(epoch FROM time) * 1000)::bigint";

constexpr const char* KeepPosition =
    "INSERT INTO spools (line, spool, done) VALUES (?, ?, ?) ON CONFLICT (line, spool) DO UPDATE SET done = "
    "excluded.done";

constexpr const char* KeepGap =
    "INSERT INTO gaps (line, \"from\", \"to\", lost, reason) VALUES (?, ?, ?, ?, ?) ON CONFLICT (line, "
    "\"from\", reason) DO UPDATE SET \"to\" = excluded.\"to\", lost = excluded.lost";

constexpr const char* MissingRights =
    "SELECT coalesce(string_agg(name || ': ' || kind, ', '), '') FROM (VALUES ('readings', 'INSERT'), "
    "('readings', 'SELECT'), ('gaps', 'INSERT'), ('gaps', 'SELECT'), ('gaps', 'UPDATE'), ('spools', "
    "'INSERT'), ('spools', 'SELECT'), ('spools', 'UPDATE')) AS rights(name, kind) "
    "WHERE NOT has_table_privilege(name, kind)";

// Columns that are not as they were made, so that what comes back is not what was put in.
constexpr const char* OtherColumns =
    "SELECT coalesce(string_agg(t || '.' || c || ' (' || kind || ')', ', '), '') FROM (VALUES "
    "('readings', 'line', 'text'), ('readings', 'address', 'integer'), ('readings', 'model', 'text'), "
    "('readings', 'channel', 'text'), ('readings', 'time', 'timestamp with time zone'), "
    "('readings', 'value', 'double precision'), ('readings', 'text', 'text'), ('readings', 'unit', 'text'), "
    "('readings', 'state', 'text'), ('gaps', 'line', 'text'), ('gaps', 'from', 'timestamp with time zone'), "
    "('gaps', 'to', 'timestamp with time zone'), ('gaps', 'lost', 'bigint'), ('gaps', 'reason', 'text'), "
    "('spools', 'line', 'text'), ('spools', 'spool', 'text'), ('spools', 'done', 'bigint')) AS made(t, c, "
    "kind) WHERE NOT EXISTS (SELECT FROM pg_attribute WHERE attrelid = to_regclass(t) AND attname = c AND "
    "NOT attisdropped AND format_type(atttypid, atttypmod) = kind)";

constexpr int MostTries = 1000; // of a batch: milliseconds that are taken one after the other

using Key = std::tuple<std::int64_t, std::string, std::int64_t>; // address, channel, time

std::string JsonOf(const SpoolRow& row) {
    return "{\"address\":" + std::to_string(row.Address) + ",\"model\":" + JsonText(row.Model) +
           ",\"channel\":" + JsonText(row.Channel) + ",\"time\":\"" + UtcMsText(row.UnixMs) +
           "\",\"value\":" + (row.Number ? ShortestText(*row.Number) : "null") +
           ",\"text\":" + JsonText(row.Text) + ",\"unit\":" + JsonText(row.Unit) +
           ",\"state\":" + JsonText(row.State) + "}";
}

std::string JsonOf(const std::vector<SpoolRow>& rows) {
    std::string json = "[";
    for (const SpoolRow& row : rows)
        json += (json.size() > 1 ? "," : "") + JsonOf(row);
    return json + "]";
}

// What the server itself said to the end of the connection or of the attempt, in whatever language, else the
// first that its library says. The library alone puts two blanks behind a colon.
std::string Words(const std::string& text) {
    const QString all = QString::fromStdString(text);
    for (const QString& line : all.split('\n'))
        if (const auto colon = line.indexOf(":  "); colon >= 0)
            return line.mid(colon + 3).simplified().toStdString();
    const std::string first = all.section('\n', 0, 0).simplified().toStdString();
    return first.empty() ? "the connection was lost" : first; // while it was being opened
}

// Whether a server that is there let nobody in for something that stays. What passes by itself is known by
// its words alone, where they are English.
bool SaidByServer(const std::string& text) {
    for (const char* full : {"too many clients", "too many connections", "connection slots"})
        if (text.find(full) != std::string::npos)
            return false;
    return text.find(":  ") != std::string::npos || text.find("fe_sendauth") != std::string::npos;
}

// A certificate, or what the server's side of it is.
bool IsOfEncryption(const std::string& text, const std::string& host) {
    const QString words =
        QString::fromStdString(text).remove(QString::fromStdString(host), Qt::CaseInsensitive).toLower();
    return words.contains("ssl") && !words.contains("syscall") && !words.contains("closed");
}

// States that are the same until somebody changes something: data, authorization, names and rights.
bool IsRefusal(const std::string& state) {
    constexpr const char* classes[] = {"22", "23", "28", "3D", "3F", "42"};
    for (const char* each : classes)
        if (state.starts_with(each))
            return true;
    return false;
}

// In the library's own words for connections.
QString Quoted(const std::string& value) {
    return "'" + QString::fromStdString(value).replace('\\', "\\\\").replace('\'', "\\'") + "'";
}

} // namespace

struct PostgresDestination::Connection : SqlConnection {
    Connection() : SqlConnection(PostgresDriver) {}

    // An empty text, or the reason of the failure.
    std::string Open(const PostgresAddress& address) {
        Database.setHostName(QString::fromStdString(address.Host));
        Database.setPort(address.Port);
        Database.setDatabaseName(QString::fromStdString(address.Database));
        Database.setUserName(QString::fromStdString(address.User));
        Database.setConnectOptions(QString(Limits) + ";application_name=kavroctl");
        if (!Database.open())
            return Database.lastError().databaseText().toStdString();
        DropNotices();
        return {};
    }

    // The library would write them to standard error.
    void DropNotices() const {
        using Processor = void (*)(void* argument, const char* text);
        using SetProcessor = Processor (*)(void* connection, Processor processor, void* argument);
        const QVariant handle = Database.driver()->handle();
        const auto set = reinterpret_cast<SetProcessor>(QLibrary::resolve("pq", 5, "PQsetNoticeProcessor"));
        if (set && handle.isValid())
            set(
                *static_cast<void* const*>(handle.data()), [](void*, const char*) {}, nullptr);
    }

    // Nothing is prepared: that would be two more ways to the server and back, and Qt complains on standard
    // error when a statement cannot be forgotten there any more.
    QSqlQuery Ran(const char* sql, const std::vector<QVariant>& values) const override {
        QString text = sql;
        qsizetype place = 0;
        for (const QVariant& value : values) {
            QSqlField field("value", value.metaType());
            field.setValue(value);
            const QString shown = Database.driver()->formatValue(field);
            place = text.indexOf('?', place);
            text.replace(place, 1, shown);
            place += shown.size();
        }
        QSqlQuery query(Database);
        query.setForwardOnly(true);
        if (!query.exec(text))
            ThrowSql(query.lastError());
        return query;
    }
};

PostgresDestination::PostgresDestination(PostgresAddress address, std::string line, std::string spoolId)
    : address_(std::move(address)), line_(std::move(line)), spoolId_(std::move(spoolId)) {}

PostgresDestination::~PostgresDestination() = default;

std::string PostgresDestination::Name() const {
    const bool usual = address_.Port == PostgresAddress().Port;
    return "The database " + address_.User + "@" + address_.Host +
           (usual ? "" : ":" + std::to_string(address_.Port)) + "/" + address_.Database;
}

void PostgresDestination::Close() {
    connection_.reset();
}

template <typename Work>
auto PostgresDestination::Trying(const Work& work) {
    try {
        return work();
    } catch (const SqlFailure& failure) {
        Close();
        const std::string words = Words(failure.what());
        if (IsRefusal(failure.State))
            throw DestinationRefused(words);
        throw DestinationAway(words);
    } catch (...) {
        Close();
        throw;
    }
}

std::optional<std::int64_t> PostgresDestination::Connect(std::int64_t /*lostEver*/) {
    return Trying([this] {
        Open();
        connection_->Run(StatementLimit);
        MakeTables();
        RequireTables();
        return std::optional(Position());
    });
}

// A failure to connect has no code. Whether the server would take anybody tells those of a password from
// those of a server that is only starting; the second try, when it has just done so.
void PostgresDestination::Open() {
    connection_ = std::make_unique<Connection>();
    std::string reason = connection_->Open(address_);
    if (!reason.empty() && SaidByServer(reason) && Accepts()) {
        reason = connection_->Open(address_);
        if (!reason.empty() && SaidByServer(reason) && Accepts())
            throw DestinationRefused(Words(reason));
    }
    if (reason.empty())
        return;
    if (IsOfEncryption(reason, address_.Host))
        throw DestinationRefused(Words(reason));
    throw DestinationAway(Words(reason));
}

// By the library that Qt's driver has loaded.
bool PostgresDestination::Accepts() const {
    using Ping = int (*)(const char* connection);
    const auto ping = reinterpret_cast<Ping>(QLibrary::resolve("pq", 5, "PQping"));
    const QString connection = "host=" + Quoted(address_.Host) + " port=" + QString::number(address_.Port) +
                               " dbname=" + Quoted(address_.Database) + " user=" + Quoted(address_.User) +
                               " connect_timeout=5";
    return ping && ping(connection.toUtf8().constData()) == 0;
}

// Only what is missing, as a role that may write may not always make tables.
// What another program has just made may still seem to be missing.
void PostgresDestination::MakeTables() const {
    const auto missing = [this](const PostgresTable& table) {
        QSqlQuery there = connection_->Ran("SELECT to_regclass(?) IS NULL", {BoundText(table.Name)});
        return NextRow(there) && there.value(0).toBool();
    };
    if (std::ranges::none_of(PostgresTables, missing))
        return;
    Transaction transaction(*connection_, "BEGIN");
    connection_->Run(TablesLock);
    for (const PostgresTable& table : PostgresTables)
        if (missing(table)) {
            connection_->Run(table.Make);
            if (&table == PostgresTables)
                connection_->Run(("COMMENT ON TABLE readings IS 'Readings of field I/O modules, version " +
                                  std::to_string(PostgresVersion) + "'")
                                     .c_str());
        }
    transaction.Commit();
}

void PostgresDestination::RequireTables() const {
    const auto version = connection_->Number(
        "SELECT coalesce(substring(obj_description('readings'::regclass) FROM 'version ([0-9]+)$'), '0')");
    if (version > PostgresVersion)
        throw DestinationRefused("a later version of this program made its tables");
    QSqlQuery other = connection_->Ran(OtherColumns, {});
    if (NextRow(other) && !TextAt(other, 0).empty())
        throw DestinationRefused("its tables are of another kind; they lack " + TextAt(other, 0) +
                                 "; rename them, or have another schema first in the search path");
    QSqlQuery missing = connection_->Ran(MissingRights, {});
    if (NextRow(missing) && !TextAt(missing, 0).empty())
        throw DestinationRefused("the user " + address_.User + " lacks rights (" + TextAt(missing, 0) + ")");
}

// Waits for what an earlier connection may still be about to commit, which holds the row.
std::int64_t PostgresDestination::Position() const {
    const std::vector<QVariant> values = {BoundText(line_), BoundText(spoolId_)};
    connection_->Ran("INSERT INTO spools (line, spool, done) VALUES (?, ?, 0) ON CONFLICT DO NOTHING",
                     values);
    QSqlQuery done =
        connection_->Ran("SELECT done FROM spools WHERE line = ? AND spool = ? FOR UPDATE", values);
    return NextRow(done) ? done.value(0).toLongLong() : 0;
}

std::int64_t PostgresDestination::Send(const std::vector<SpoolRow>& rows) {
    const std::int64_t last = rows.back().Id;
    return Trying([&] {
        Transaction transaction(*connection_, "BEGIN");
        connection_->Ran(KeepPosition, {BoundText(line_), BoundText(spoolId_), qlonglong{last}});
        Insert(rows);
        transaction.Commit();
        return last;
    });
}

// None of them is there yet: where a time is taken, it is by another reading.
void PostgresDestination::Insert(std::vector<SpoolRow> rows) const {
    for (int tries = 0; !rows.empty(); ++tries) {
        if (tries == MostTries)
            throw DestinationRefused("its table readings does not keep what it is given; look at its "
                                     "triggers");
        QSqlQuery insert = connection_->Ran(InsertRows, {BoundText(line_), BoundText(JsonOf(rows))});
        std::set<Key> came;
        while (NextRow(insert))
            came.emplace(insert.value(0).toLongLong(), TextAt(insert, 1), insert.value(2).toLongLong());
        std::erase_if(rows, [&](const SpoolRow& row) {
            return came.contains({row.Address, row.Channel, row.UnixMs});
        });
        for (SpoolRow& row : rows)
            ++row.UnixMs;
    }
}

void PostgresDestination::SendGaps(const std::vector<SpoolGap>& gaps, std::int64_t) {
    Trying([&] {
        for (const SpoolGap& gap : gaps)
            connection_->Ran(KeepGap,
                             {BoundText(line_), BoundText(UtcMsText(gap.FromMs)),
                              BoundText(UtcMsText(gap.ToMs)), qlonglong{gap.Lost}, BoundText(gap.Reason)});
    });
}

} // namespace kavro
