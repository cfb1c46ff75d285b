#include "ports/sqlite_history.h"

#include "link/utc_text.h"
#include "ports/history_reader.h"
#include "support/failure_text.h"
#include "support/full_disk.h"
#include "support/test_session.h"

#include <filesystem>
#include <fstream>

namespace kavro {
namespace {

constexpr std::int64_t StartMs = 1'772'460'309'120; // 2026-03-02T14:05:09.120Z
constexpr std::int64_t HourMs = 3'600'000, DayMs = 24 * HourMs;

std::vector<Reading> At(std::int64_t ms, std::int16_t address = 5, const std::string& channel = "0") {
    return {{{ms, 0}, address, "8250", {channel, "1.5000", 1.5, "V", ValueState::Ok}}};
}

// "time line address channel text state" of what a history has in a range.
Lines Kept(const std::string& path, const HistoryRange& range = {}) {
    Lines rows;
    HistoryReader(path).Read(range, [&](const KeptReading& row) {
        rows.push_back(UtcMsText(row.UnixMs).substr(11) + " " + row.Line + " " + std::to_string(row.Address) +
                       " " + row.Channel + " " + (row.Number ? row.Text : "NULL") + " " + row.State);
        return true;
    });
    return rows;
}

class SqliteHistoryTest : public testing::Test {
protected:
    SqliteHistory Opened(std::optional<int> keepDays = {}, const std::string& line = "hall") {
        return SqliteHistory(
            {Path, line, keepDays}, [this](const std::string& text) { Told.push_back(text); },
            [this] {
                return WallTime{NowMs, 0};
            });
    }

    FullDisk Disk{"size=16m"};
    std::string Path = Disk.Path("a #?%41.sqlite"); // what stands for something else in an address of a file
    Lines Told;
    std::int64_t NowMs = StartMs;
};

TEST_F(SqliteHistoryTest, KeepsEachReadingOnce) {
    {
        SqliteHistory history = Opened();
        std::vector<Reading> readings = At(StartMs);
        readings.push_back({{StartMs, 0}, 5, "8250", {"1", "", 7.0, "V", ValueState::NoReply}});
        readings.push_back({{StartMs, 0}, 5, "8250", {"IN", "0F", {}, "hex", ValueState::Ok}});
        history.Take(readings);
        history.Take(At(StartMs + 1));
        history.Take(At(StartMs)); // the clock was put back
        history.Take(At(StartMs, 4));
        EXPECT_EQ(Kept(Path).size(), 6U) << "while it is written";
    }
    const Lines all = {"14:05:09.120Z hall 4 0 1.5000 ok",     "14:05:09.120Z hall 5 0 1.5000 ok",
                       "14:05:09.120Z hall 5 1 NULL no reply", "14:05:09.120Z hall 5 IN NULL ok",
                       "14:05:09.121Z hall 5 0 1.5000 ok",     "14:05:09.122Z hall 5 0 1.5000 ok"};
    EXPECT_EQ(Kept(Path), all);
    EXPECT_EQ(Told, Lines());
    EXPECT_EQ(Kept(Path, {.Channel = "in", .FromMs = StartMs, .ToMs = StartMs + 1}), Lines({all[3]}));
    EXPECT_EQ(Kept(Path, {.Address = 5, .FromMs = StartMs + 1, .ToMs = StartMs + 2}), Lines({all[4]}));
    EXPECT_EQ(Kept(Path, {.Line = "hal"}), Lines());
}

// More of each value than is read at once, and two lines that come at the same times.
TEST_F(SqliteHistoryTest, ReadsInOrder) {
    Path = Disk.Path("order");
    SqliteHistory hall = Opened(), attic = Opened({}, "attic");
    for (std::int64_t turn = 0; turn < 260; ++turn) {
        hall.Take(At(StartMs + 10 * turn, 5));
        if (turn % 3 == 0)
            attic.Take(At(StartMs + 10 * turn, 200));
    }
    std::vector<std::tuple<std::int64_t, std::string>> rows;
    HistoryReader(Path).Read({.ToMs = StartMs + 2550}, [&](const KeptReading& row) {
        rows.emplace_back(row.UnixMs, row.Line);
        return true;
    });
    EXPECT_EQ(rows.size(), 255U + 85U);
    EXPECT_TRUE(std::ranges::is_sorted(rows));
}

// What stops storing, and what lets it go on.
TEST_F(SqliteHistoryTest, TellsOnceAndKeepsTheGap) {
    std::unique_ptr<HistoryConnection> other;
    const auto move = [&](const std::string& from, const std::string& to) {
        std::filesystem::rename(from, to);
    };
    const struct {
        const char* Reason;
        std::function<void()> Stop, Free;
    } cases[] = {
        {"disk", [&] { Disk.Fill(); }, [&] { Disk.MakeRoom(); }},
        {"disk I/O error", [] { FullDisk::Limit(0); }, [] { FullDisk::Limit(RLIM_INFINITY); }},
        {"database is locked",
         [&] {
             other = std::make_unique<HistoryConnection>(Path, HistoryConnection::Access::Write);
             other->Run("BEGIN IMMEDIATE");
         },
         [&] { other.reset(); }},
        {"the file is gone", [&] { move(Path, Path + "x"); }, [&] { move(Path + "x", Path); }},
    };
    for (const auto& [reason, stop, free] : cases) {
        SqliteHistory history = Opened({}, "line");
        const std::int64_t begin = NowMs += HourMs;
        history.Take(At(begin));
        stop();
        for (int turn = 1; turn <= 100; ++turn) // also what SQLite still finds room for
            history.Take(At(begin + turn));
        free();
        NowMs += 500;
        history.TryAgain();
        history.Take(At(begin + 600));
        ASSERT_EQ(Told.size(), 2U) << reason;
        EXPECT_TRUE(Contains(Told[0], "cannot be written: "));
        const std::vector<KeptGap> gaps = HistoryReader(Path).Gaps({.Line = "line", .FromMs = begin});
        ASSERT_EQ(gaps.size(), 1U);
        EXPECT_TRUE(Contains(gaps[0].Reason, reason));
        EXPECT_TRUE(Contains(Told[1], "does not have " + std::to_string(gaps[0].Lost) + " reading"));
        EXPECT_EQ(gaps[0].ToMs, NowMs);
        const auto kept = Kept(Path, {.FromMs = begin}).size();
        EXPECT_EQ(kept + static_cast<std::size_t>(gaps[0].Lost), 102U) << "each is there or counted";
        Told.clear();
    }
}

TEST_F(SqliteHistoryTest, AFileThatReplacesItIsNotTakenForIt) {
    SqliteHistory history = Opened();
    history.Take(At(StartMs));
    std::ofstream(Path + "x") << "time,value\n";
    std::filesystem::rename(Path + "x", Path);
    history.Take(At(StartMs + 1));
    ASSERT_EQ(Told.size(), 1U);
    EXPECT_TRUE(Contains(Told[0], "the file was replaced by another one"));
}

TEST_F(SqliteHistoryTest, AGapThatNobodyKeepsIsTold) {
    {
        SqliteHistory history = Opened();
        HistoryConnection other(Path, HistoryConnection::Access::Write);
        const auto lock = std::make_unique<Transaction>(other);
        history.Take(At(StartMs));
    }
    ASSERT_EQ(Told.size(), 2U);
    EXPECT_TRUE(Contains(Told[1], "written again")) << "the lock went first";
    Told.clear();
    {
        SqliteHistory history = Opened();
        std::filesystem::remove(Path);
        history.Take(At(StartMs));
    }
    ASSERT_EQ(Told.size(), 2U);
    EXPECT_TRUE(Contains(Told[1], "1 reading since "));
}

TEST_F(SqliteHistoryTest, WhatIsTooOldGoesOnceAnHour) {
    const auto rows = [&] { return Kept(Path, {.Line = "hall"}).size(); };
    {
        SqliteHistory hall = Opened(), attic = Opened({}, "attic");
        for (int turn = 0; turn < 450; ++turn)
            hall.Take(At(StartMs + turn, 5, turn % 2 ? "0" : "1"));
        attic.Take(At(StartMs));
    }
    const std::int64_t now = StartMs + 2 * DayMs + 440;
    SqliteHistory hall = Opened(2);
    hall.Take(At(now, 6)); // two days after the last one, or a clock that is set wrong
    hall.Take(At(now + 3650 * DayMs, 6));
    hall.Take(At(now - HourMs - 1, 6));
    EXPECT_EQ(rows(), 453U);
    hall.Take(At(now - 1, 6)); // an hour without a leap
    std::size_t took = 1;
    for (; took < 1000 && rows() != 11 + 3 + took; ++took) // eleven of the old ones are not two days old yet
        hall.Take(At(now + static_cast<std::int64_t>(took), 6));
    const auto left = rows();
    EXPECT_LT(left, 100U) << testing::PrintToString(Told);
    hall.Take(At(now + HourMs / 2, 6));
    EXPECT_EQ(rows(), left + 1);
    for (int turn = 0; turn < 3; ++turn)
        hall.Take(At(now + HourMs + turn, 6));
    EXPECT_EQ(rows(), left + 4 - 11);
    EXPECT_EQ(Kept(Path, {.Line = "attic"}).size(), 1U);
}

TEST_F(SqliteHistoryTest, RefusesWhatIsNoHistory) {
    const auto made = [&](const char* name, const char* sql) {
        { SqliteHistory({Disk.Path(name), "line", {}}, {}); }
        HistoryConnection(Disk.Path(name), HistoryConnection::Access::Write).Run(sql);
        return Disk.Path(name);
    };
    const std::pair<std::string, const char*> cases[] = {
        {Disk.Path(), "it is a folder. Name"},
        {Disk.Path("none/file"), "its folder does not exist"},
        {"/dev/null", "no regular file"},
        {Disk.Write("text", std::string(5000, 'x')), "not a SQLite database"},
        {made("later", "PRAGMA user_version = 2"), "a later version"},
        {made("other", "PRAGMA application_id = 0"), "another program"}};
    for (const auto& wrong : cases)
        EXPECT_TRUE(Contains(FailureText([&] {
                                 SqliteHistory({wrong.first, "line", {}}, {});
                             }),
                             wrong.second));
    EXPECT_TRUE(Contains(FailureText([&] { HistoryReader(Disk.Path("none")); }), "no such file"));
    Disk.Write("empty", "");
    { SqliteHistory({Disk.Path("empty"), "line", {}}, {}); } // a kill left it before anything was in it
    EXPECT_EQ(Kept(Disk.Path("empty")), Lines());
}

} // namespace
} // namespace kavro
