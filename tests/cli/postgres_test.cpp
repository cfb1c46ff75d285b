#include "support/failure_text.h"
#include "support/postgres_server.h"
#include "support/program_run.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kavro {
namespace {

class PostgresMonitor : public testing::Test {
protected:
    PostgresMonitor() {
        qputenv("PGPASSWORD", PostgresServer::Password);
        qputenv("TZ", "UTC");
        qputenv("XDG_DATA_HOME", Folder.path().toUtf8());
        QFile map(Folder.filePath("map.json"));
        const Outcome search =
            ProgramRun(KAVROCTL_PROGRAM)
                .Run({"search", "--port", "1=demo", "--to", "3", "--baud", "9600", "--json"});
        EXPECT_TRUE(map.open(QIODevice::WriteOnly) && map.write(search.Out.c_str()) > 0);
    }

    QStringList Monitor(const QStringList& more = {}) const {
        return QStringList{"monitor",
                           "--port",
                           "1=demo",
                           "--map",
                           Folder.filePath("map.json"),
                           "--csv",
                           "--interval",
                           "0",
                           "--line",
                           "hall",
                           "--store",
                           QString::fromStdString(Server.Address())} +
               more;
    }

    // Keeps what it prints until it has printed that many rows more.
    void Print(ProgramRun& monitor, int rows) {
        const auto wanted = Printed.count('\n') + rows;
        while (Printed.count('\n') < wanted && monitor.Process.waitForReadyRead(PatienceMs))
            Printed += monitor.Process.readAllStandardOutput();
    }

    QTemporaryDir Folder;
    PostgresServer Server;
    QByteArray Printed;
};

// Each row that was printed is in the database once, and a kill has at most one turn there that it did not
// print.
TEST_F(PostgresMonitor, TenKillsAndTenRestartsLoseAndDoubleNothing) {
    constexpr int kills = 10, mostOfATurn = 8;
    for (int run = 0; run < kills; ++run) {
        ProgramRun monitor(KAVROCTL_PROGRAM);
        monitor.Start(Monitor());
        Print(monitor, 10 * (run % 3 + 1));
        Server.Stop();
        Print(monitor, 5);
        if (run % 2 == 0)
            Server.Start();
        Print(monitor, run % 4 < 2 ? 5 : 40);
        monitor.Process.kill();
        monitor.Process.waitForFinished(PatienceMs);
        Printed += monitor.Process.readAllStandardOutput();
        for (const QByteArray& told : monitor.Process.readAllStandardError().split('\n'))
            EXPECT_TRUE(told.isEmpty() || told.startsWith("kavroctl: The database ")) << told.toStdString();
        if (run % 2 != 0)
            Server.Start();
    }
    const Outcome last = ProgramRun(KAVROCTL_PROGRAM).Run(Monitor({"--count", "1"}));
    EXPECT_EQ(last.Exit, 0) << last.Err;
    Printed += last.Out.c_str();

    std::vector<std::string> printed;
    for (const QByteArray& row : Printed.split('\n'))
        if (!row.isEmpty() && !row.startsWith("time,"))
            printed.push_back(row.toStdString());
    std::vector<std::string> kept = PostgresServer::Admin(Server).Rows(
        "SELECT concat_ws(',', to_char(time AT TIME ZONE 'UTC', 'YYYY-MM-DD\"T\"HH24:MI:SS.MS+00:00'), "
        "address, "
        "model, channel, text, unit, state) FROM readings WHERE line = 'hall'");
    std::ranges::sort(printed);
    std::ranges::sort(kept);
    EXPECT_GT(printed.size(), 400U);
    EXPECT_TRUE(std::ranges::includes(kept, printed)) << printed.size() << " and " << kept.size();
    EXPECT_LE(kept.size(), printed.size() + std::size_t{kills} * mostOfATurn);
}

TEST_F(PostgresMonitor, SaysWhyItDoesNotBegin) {
    qputenv("PGPASSWORD", "guess");
    const Outcome refused = ProgramRun(KAVROCTL_PROGRAM).Run(Monitor());
    EXPECT_EQ(refused.Exit, 3);
    EXPECT_TRUE(Contains(refused.Err, "refuses: password authentication failed"));
    EXPECT_EQ(refused.Out, "");
    qputenv("PGPASSWORD", PostgresServer::Password);
    const std::pair<QStringList, const char*> wrong[] = {
        {{"--keep", "3"}, "--keep is for a history in a file"},
        {{"--spool-limit", "0"}, "a number of megabytes"},
        {{"--store", "file"}, "--store can be given once"}};
    for (const auto& [options, piece] : wrong) {
        const Outcome outcome = ProgramRun(KAVROCTL_PROGRAM).Run(Monitor(options));
        EXPECT_EQ(outcome.Exit, 2);
        EXPECT_TRUE(Contains(outcome.Err, piece));
    }
}

} // namespace
} // namespace kavro
