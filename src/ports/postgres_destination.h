#pragma once

#include "ports/destination.h"
#include "ports/postgres_address.h"
#include "ports/sql_connection.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// The version of the tables below; the comment on `readings` ends with it.
inline constexpr int PostgresVersion = 1;

/// A table in the database, and how it is made.
struct PostgresTable {
    const char* Name;
    const char* Make;
};

/// The tables, in the search path. `spools` has how far each spool is; it changes in the transaction that
/// brings the readings, so that after whatever cut one off it is known which are there.
inline constexpr PostgresTable PostgresTables[] = {
    {"readings",
     "CREATE TABLE IF NOT EXISTS readings (line text NOT NULL, address integer NOT NULL, model text NOT "
     "NULL, channel text "
     "NOT NULL, time timestamptz NOT NULL, value double precision, text text NOT NULL, unit text NOT NULL, "
     "state text NOT NULL, PRIMARY KEY (line, address, channel, time))"},
    {"gaps", "CREATE TABLE IF NOT EXISTS gaps (line text NOT NULL, \"from\" timestamptz NOT NULL, \"to\" "
             "timestamptz NOT "
             "NULL, lost "
             "bigint NOT NULL, reason text NOT NULL, PRIMARY KEY (line, \"from\", reason))"},
    {"spools", "CREATE TABLE IF NOT EXISTS spools (line text NOT NULL, spool text NOT NULL, done bigint NOT "
               "NULL, PRIMARY KEY (line, "
               "spool))"},
};

/// A PostgreSQL database that gets each reading once, whatever is cut off or repeated. The password and all
/// other options are taken as PostgreSQL's own tools take them: PGPASSWORD, ~/.pgpass, PGSSLMODE and so on.
class PostgresDestination : public Destination {
public:
    /// Of the readings of `line` in the spool `spoolId`. Connects to nothing.
    PostgresDestination(PostgresAddress address, std::string line, std::string spoolId);
    ~PostgresDestination() override;

    std::string Name() const override;
    std::size_t Most() const override { return 500; }
    int GatherMs() const override { return 1000; }
    std::optional<std::int64_t> Connect(std::int64_t lostEver) override;

    /// Brings the rows in one transaction. One at a time that its value has in the database already, as the
    /// clock was put back, gets the next free millisecond.
    std::int64_t Send(const std::vector<SpoolRow>& rows) override;

    void SendGaps(const std::vector<SpoolGap>& gaps, std::int64_t lostEver) override;
    void Close() override;

private:
    struct Connection;

    template <typename Work>
    auto Trying(const Work& work);
    void Open();
    bool Accepts() const;
    void MakeTables() const;
    void RequireTables() const;
    std::int64_t Position() const;
    void Insert(std::vector<SpoolRow> rows) const;

    PostgresAddress address_;
    std::string line_, spoolId_;
    std::unique_ptr<Connection> connection_;
};

} // namespace kavro
