#include "ports/postgres_destination.h"

#include "link/utc_text.h"
#include "ports/feed.h"
#include "ports/spool_outlet.h"
#include "support/failure_text.h"
#include "support/full_disk.h"
#include "support/postgres_server.h"
#include "support/test_session.h"

#include <fstream>
#include <future>
#include <iterator>
#include <mutex>

namespace kavro {
namespace {

constexpr std::int64_t StartMs = 1'772'460'309'120; // 2026-03-02T14:05:09.120Z
constexpr std::int64_t LimitBytes = 300'000;

std::vector<Reading> At(std::int64_t ms, const std::string& text = "1.5000") {
    return {{{ms, 0}, 5, "8250", {"0", text, 1.5, "V", ValueState::Ok}}};
}

class PostgresTest : public testing::Test {
protected:
    static void SetUpTestSuite() { Server = std::make_unique<PostgresServer>(); }
    static void TearDownTestSuite() { Server.reset(); }

    PostgresTest() {
        qputenv("PGPASSWORD", PostgresServer::Password);
        PostgresServer::Admin(*Server).Run("DROP TABLE IF EXISTS readings, gaps, spools");
    }

    SpoolChoice Choice() const { return {Disk.Path("spool"), "hall", LimitBytes, {"database"}}; }

    static std::unique_ptr<Destination> Database(const std::string& spoolId) {
        return std::make_unique<PostgresDestination>(ParsePostgresAddress(Server->Address()), "hall",
                                                     spoolId);
    }

    std::unique_ptr<Feed> Fed() {
        return std::make_unique<Feed>(Choice(), std::vector<FeedTarget>{{"database", Database}},
                                      [this](const std::string& text) {
                                          const std::lock_guard lock(Mutex);
                                          Told.push_back(text);
                                      });
    }

    // What the database gives to a query, as soon as the last row is `last`.
    static Lines Await(const char* sql, const std::string& last) {
        Lines rows;
        for (int tries = 0; tries < 1000 && (rows.empty() || rows.back() != last); ++tries) {
            SteadyNap();
            try {
                rows = PostgresServer::Admin(*Server).Rows(sql);
            } catch (const SqlFailure&) { // there are no tables yet
            }
        }
        return rows;
    }

    static void SteadyNap() { std::this_thread::sleep_for(std::chrono::milliseconds(20)); }

    bool AwaitTold(const std::string& piece) {
        for (int tries = 0; tries < 1000; ++tries, SteadyNap()) {
            const std::lock_guard lock(Mutex);
            if (std::ranges::any_of(Told, [&](const auto& text) { return Contains(text, piece); }))
                return true;
        }
        return false;
    }

    static inline std::unique_ptr<PostgresServer> Server;
    FullDisk Disk{"size=16m"};
    std::mutex Mutex;
    Lines Told;
};

constexpr const char* Times = "SELECT concat_ws(' ', to_char(time AT TIME ZONE 'UTC', 'SS.MS'), text, state) "
                              "FROM readings ORDER BY time";

TEST_F(PostgresTest, AwayAtTheStartAndClockPutBack) {
    Server->Stop();
    auto feed = Fed();
    EXPECT_TRUE(AwaitTold("cannot be reached"));
    feed->Take(At(StartMs, "it's \"a\\b\" \xC2\xB0"));
    feed->Take({{{StartMs + 2, 0}, 5, "8250", {"0", "", {}, "V", ValueState::NoReply}}});
    feed->Take(At(StartMs, "2")); // at a time that waits
    Server->Start();
    EXPECT_EQ(Await(Times, "09.122  no reply"),
              Lines({"09.120 it's \"a\\b\" \xC2\xB0 ok", "09.121 2 ok", "09.122  no reply"}));
    EXPECT_TRUE(AwaitTold("there again"));
    feed->Take(At(StartMs, "2")); // at one that has gone, with what it had: another reading all the same
    EXPECT_EQ(Await(Times, "09.123 2 ok").size(), 4U);
    feed.reset();
    EXPECT_EQ(Told.size(), 2U) << testing::PrintToString(Told);
    EXPECT_EQ(PostgresServer::Admin(*Server).Rows(
                  "SELECT count(*) FROM readings WHERE line = 'hall' AND address = 5 "
                  "AND model = '8250' AND unit = 'V' AND value IS NOT DISTINCT FROM "
                  "CASE state WHEN 'ok' THEN 1.5 END"),
              Lines({"4"}));
}

TEST_F(PostgresTest, ManyLinesMakeTheTablesAtOnce) {
    std::vector<std::future<void>> lines;
    lines.reserve(12);
    for (int line = 0; line < 12; ++line)
        lines.push_back(std::async(std::launch::async, [] { Database("a spool")->Connect(0); }));
    for (std::future<void>& line : lines)
        EXPECT_EQ(FailureText([&] { line.get(); }), "");
}

// What was cut off between the database and the spool is known to be there.
TEST_F(PostgresTest, WhatWasCutOffIsNotSentTwice) {
    std::string id;
    {
        Spool spool(Choice(), {});
        id = spool.Id();
        spool.Take(At(StartMs));
        const auto database = Database(id);
        database->Connect(0);
        EXPECT_GT(database->Send(SpoolOutlet(Choice().Path, "database").Next(10)), 0)
            << "and the spool is not told";
    }
    auto feed = Fed();
    feed->Take(At(StartMs + 1));
    feed.reset();
    EXPECT_EQ(PostgresServer::Admin(*Server).Rows(Times), Lines({"09.120 1.5000 ok", "09.121 1.5000 ok"}));
    EXPECT_EQ(Told, Lines());
    // A connection that is late keeps the next one from looking too early.
    PostgresServer::Admin late(*Server);
    auto transaction = std::make_unique<Transaction>(late, "BEGIN");
    late.Run("UPDATE spools SET done = 4711");
    std::thread commit([&] {
        for (int nap = 0; nap < 10; ++nap)
            SteadyNap();
        transaction->Commit();
    });
    EXPECT_EQ(Database(id)->Connect(0), 4711);
    commit.join();
}

TEST_F(PostgresTest, RefusedAtTheStartAndLater) {
    qputenv("PGPASSWORD", "guess");
    EXPECT_TRUE(Contains(FailureText([&] { Fed(); }), "/site refuses: password authentication failed"));
    qunsetenv("PGPASSWORD");
    EXPECT_TRUE(Contains(FailureText([&] { Fed(); }), "refuses: "));
    qputenv("PGPASSWORD", PostgresServer::Password);
    PostgresServer::Admin admin(*Server);
    admin.Run("REVOKE ALL ON SCHEMA public FROM meter");
    EXPECT_TRUE(Contains(FailureText([&] { Fed(); }), "refuses: permission denied"));
    admin.Run("GRANT ALL ON SCHEMA public TO meter");
    auto feed = Fed();
    feed.reset();
    admin.Run("ALTER TABLE readings ALTER COLUMN time TYPE timestamp");
    EXPECT_TRUE(Contains(FailureText([&] { Fed(); }), "they lack readings.time (timestamp with time zone)"));
    admin.Run("ALTER TABLE readings ALTER COLUMN time TYPE timestamptz");
    feed = Fed();
    admin.Run("ALTER TABLE readings OWNER TO postgres");
    feed->Take(At(StartMs));
    EXPECT_TRUE(AwaitTold("refuses: permission denied"));
    EXPECT_TRUE(FailureText([&] { Spool(Choice(), {}); }).find("used by another program") !=
                std::string::npos);
    SpoolChoice other = Choice();
    std::filesystem::copy(Choice().Path, other.Path = Disk.Path("other"));
    other.Outlets = {"broker"};
    EXPECT_TRUE(Contains(FailureText([&] { Spool(other, {}); }), "1 reading waiting for the database"));
    std::filesystem::create_symlink(Choice().Path, other.Path = Disk.Path("link"));
    EXPECT_TRUE(Contains(FailureText([&] { Spool(other, {}); }), "used by another program"));
    admin.Run("ALTER TABLE readings OWNER TO meter");
    EXPECT_EQ(Await(Times, "09.120 1.5000 ok").size(), 1U);
    feed.reset();
    EXPECT_EQ(Told.size(), 2U) << testing::PrintToString(Told);
}

// However much is lost, the database has the rest and knows how much it was.
TEST_F(PostgresTest, FullSpoolAndFullDisk) {
    Server->Stop();
    auto feed = Fed();
    std::int64_t taken = 0;
    const auto take = [&](int readings) {
        for (int more = 0; more < readings; more += 50) {
            std::vector<Reading> some;
            some.reserve(50);
            for (int each = 0; each < 50; ++each)
                some.push_back(At(StartMs + taken++)[0]);
            feed->Take(some);
        }
    };
    take(500);
    Disk.Fill();
    take(3'000);
    EXPECT_TRUE(AwaitTold("cannot be written"));
    Disk.MakeRoom();
    take(7'000); // some 400 kB
    EXPECT_TRUE(AwaitTold("is full: the oldest readings are dropped"));
    EXPECT_LT(std::filesystem::file_size(Choice().Path), LimitBytes * 5 / 4);
    Server->Start();
    const Lines rows =
        Await("SELECT (SELECT count(*) FROM readings) + (SELECT sum(lost) FROM gaps)", std::to_string(taken));
    EXPECT_EQ(rows, Lines({std::to_string(taken)}));
    feed->Take(At(StartMs + taken++));
    feed.reset();
    const PostgresServer::Admin admin(*Server);
    EXPECT_GE(admin.Rows("SELECT reason FROM gaps").size(), 2U);
    EXPECT_EQ(admin.Rows("SELECT count(*) FROM readings, gaps WHERE reason = 'spool full' AND time BETWEEN "
                         "\"from\" AND \"to\""),
              Lines({"0"}));
    Spool spool(Choice(), {});
    EXPECT_EQ(SpoolOutlet(Choice().Path, "database").Waiting(), 0);
}

// Not only into the journal beside the file, which nobody else empties.
TEST_F(PostgresTest, WhatWaitsComesToTheDisk) {
    Spool spool(Choice(), {});
    const auto before = std::filesystem::file_size(Choice().Path);
    for (int reading = 0; reading < 200; ++reading)
        spool.Take(At(StartMs + reading));
    for (int tries = 0; tries < 1000 && std::filesystem::file_size(Choice().Path) == before; ++tries)
        SteadyNap();
    EXPECT_GT(std::filesystem::file_size(Choice().Path), before + 8'000);
}

TEST_F(PostgresTest, ALateServerHoldsUpNobody) {
    auto feed = Fed();
    PostgresServer::Admin lock(*Server);
    const auto transaction = std::make_unique<Transaction>(lock, "BEGIN");
    lock.Run("LOCK TABLE readings");
    const auto begin = std::chrono::steady_clock::now();
    feed->Take(At(StartMs));
    const auto taken = std::chrono::steady_clock::now();
    EXPECT_LT(taken - begin, std::chrono::seconds(1));
    feed.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - taken, SenderEndTime + std::chrono::seconds(3));
    EXPECT_EQ(SpoolOutlet(Choice().Path, "database").Waiting(), 1);
}

// The blocks of SQL in a document with this piece in them.
Lines SqlIn(const char* document, const char* piece) {
    std::ifstream file(document, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const std::string begin = "```sql\n";
    Lines blocks;
    for (auto at = text.find(begin); at != std::string::npos; at = text.find(begin, at + 1)) {
        const auto first = at + begin.size();
        blocks.push_back(text.substr(first, text.find("```", first) - first));
    }
    std::erase_if(blocks, [&](const std::string& block) { return !Contains(block, piece); });
    return blocks;
}

// The tables are as the documents say, and what these do with them does.
TEST_F(PostgresTest, StandsInTheDocuments) {
    Fed()->Take(At(StartMs));
    const PostgresServer::Admin admin(*Server);
    const auto run = [&](const Lines& blocks) {
        EXPECT_FALSE(blocks.empty());
        for (const std::string& block : blocks)
            admin.Run(block.c_str());
    };
    run({"DROP SCHEMA IF EXISTS told CASCADE; CREATE SCHEMA told; SET search_path = told"});
    run(SqlIn(KAVRO_DOCS "/formats.md", "timestamptz"));
    const char* const columns =
        "SELECT concat_ws(' ', table_name, column_name, data_type, is_nullable) FROM "
        "information_schema.columns WHERE table_schema = current_schema() ORDER BY table_name, "
        "ordinal_position";
    const Lines told = admin.Rows(columns);
    run({"RESET search_path"});
    EXPECT_EQ(told, admin.Rows(columns));
    run(SqlIn(KAVRO_DOCS "/site.md", ""));
    Fed()->Take(At(StartMs + 1));
    EXPECT_EQ(admin.Rows(Times), Lines({"09.120 1.5000 ok", "09.121 1.5000 ok"})) << "in parts";
}

TEST(PostgresAddressTest, IsReadStrictly) {
    const PostgresAddress address = ParsePostgresAddress("postgresql://a%40b@[::1]:5433/my%20site");
    EXPECT_EQ(address.User + " " + address.Host + " " + address.Database, "a@b ::1 my site");
    EXPECT_EQ(address.Port, 5433);
    EXPECT_EQ(ParsePostgresAddress("postgresql://a@b/c").Port, 5432);
    const std::pair<const char*, const char*> wrong[] = {
        {"postgresql://a:b@c/d", "no password"},  {"postgresql://a:@c/d", "no password"},
        {"postgres://a:b@c/d", "no password"},    {"postgresql://a@c/d?sslmode=require", "PGSSLMODE"},
        {"postgresql://c/d", "USER@HOST"},        {"postgresql://a@c", "USER@HOST"},
        {"postgresql://a@c:99999/d", "USER@HOST"}};
    for (const auto& [text, piece] : wrong)
        EXPECT_TRUE(Contains(FailureText([&, text = text] { ParsePostgresAddress(text); }), piece)) << text;
}

} // namespace
} // namespace kavro
