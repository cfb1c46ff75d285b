#include "ports/kept_history.h"

#include "ports/history_writer.h"
#include "support/failure_text.h"
#include "terminal/test_folder.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <atomic>
#include <semaphore>

namespace kavro {

namespace {

constexpr std::int64_t Start = 1'772'460'300'000; // a multiple of ten seconds
constexpr auto Unlimited = std::chrono::minutes(1);

bool LoopUntil(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    for (timer.start(); !condition() && !timer.hasExpired(10'000);)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
    return condition();
}

// Without a number: the module was silent.
Reading ReadingAt(std::int64_t ms, std::optional<double> number) {
    return {.Time = {Start + ms, 0},
            .Address = 5,
            .Model = "8250",
            .Value = {.Channel = "0",
                      .Text = number ? std::to_string(*number) : "",
                      .Number = number,
                      .Unit = "V",
                      .State = number ? ValueState::Ok : ValueState::NoReply}};
}

HistoryQuestion Question(std::int64_t columnMs) {
    return {.Address = 5, .Channel = "0", .FromMs = Start, .ToMs = Start + 60'000, .ColumnMs = columnMs};
}

std::string Shown(const TrendColumn& column) {
    const auto text = [](double value) { return std::to_string(static_cast<int>(value)) + " "; };
    return std::to_string(column.AtMs - Start) + ": " + std::to_string(column.FirstMs - Start) + " " +
           std::to_string(column.LastMs - Start) + " " + text(column.First) + text(column.Last) +
           text(column.Least) + text(column.Most) + (column.Broken ? "broken" : "");
}

// A store that does what the test says, in place of a disk.
struct FakeDisk {
    HistoryStoreMaker Store() {
        return [this](const HistoryTeller& tell) {
            Tell = tell;
            return HistoryStore{.Take =
                                    [this](const std::vector<Reading>& readings) {
                                        ++Begun;
                                        Free.acquire();
                                        Stored += readings.size();
                                    },
                                .Miss =
                                    [this](std::int64_t from, std::int64_t lost) {
                                        Missed = {from, lost};
                                    },
                                .TryAgain = [this] { ++Tries; }};
        };
    }

    HistoryTeller Tell;
    std::counting_semaphore<> Free{0}; // a piece of work each
    std::atomic<int> Begun = 0, Tries = 0;
    std::atomic<std::size_t> Stored = 0;
    std::pair<std::int64_t, std::int64_t> Missed;
};

class KeptHistoryTest : public testing::Test {
protected:
    std::unique_ptr<KeptHistory> Open() {
        return OpenKeptHistory({.Path = Path, .Line = "mill", .KeepDays = {}},
                               [this](const std::string& text) { Told.push_back(text); });
    }

    std::vector<HistoryAnswer> Ask(KeptHistory& history, const std::vector<HistoryQuestion>& questions) {
        std::optional<std::vector<HistoryAnswer>> came;
        history.Past().Ask(questions, [&](std::vector<HistoryAnswer> answers) { came = std::move(answers); });
        EXPECT_TRUE(LoopUntil([&] { return came.has_value(); }));
        return came.value_or(std::vector<HistoryAnswer>());
    }

    TestFolder Folder;
    std::string Path = Folder.Path("kept.sqlite");
    std::vector<std::string> Told;
};

TEST_F(KeptHistoryTest, ReadingsComeBackInColumns) {
    {
        const auto history = Open();
        history->Take({ReadingAt(1000, 3), ReadingAt(2000, 9)});
        history->Take(
            {ReadingAt(9999, 1), ReadingAt(10'000, 4), ReadingAt(12'000, {}), ReadingAt(13'000, 5)});
        history->Take({ReadingAt(50'000, 6), ReadingAt(60'000, 7)});
    }
    const auto history = Open();
    HistoryQuestion other = Question(1000);
    other.Channel = "1";
    const auto answers = Ask(*history, {Question(10'000), other, Question(3'600'000)});
    std::vector<std::vector<std::string>> shown;
    for (const HistoryAnswer& answer : answers) {
        shown.emplace_back();
        for (const TrendColumn& column : answer.Columns)
            shown.back().push_back(Shown(column));
    }
    EXPECT_EQ(shown, (std::vector<std::vector<std::string>>{{"0: 1000 9999 3 1 1 9 ",
                                                             "10000: 10000 13000 4 5 4 5 broken",
                                                             "50000: 50000 50000 6 6 6 6 "},
                                                            {},
                                                            {"-300000: 1000 50000 3 6 1 9 broken"}}));
    EXPECT_TRUE(Told.empty());
}

TEST_F(KeptHistoryTest, AnsweredIsTheLastAskedAlone) {
    auto history = Open();
    std::vector<int> answered;
    const auto ask = [&](int number) {
        history->Past().Ask({Question(1000)}, [&, number](const auto&) {
            answered.push_back(number);
            if (number == 3)
                history.reset(); // by its own answer
        });
    };
    ask(1);
    ask(2);
    EXPECT_TRUE(LoopUntil([&] { return !answered.empty(); }));
    ask(3);
    EXPECT_TRUE(LoopUntil([&] { return !history; }));
    history = Open();
    ask(4);
    history.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(answered, (std::vector{2, 3}));
}

TEST_F(KeptHistoryTest, WhatCannotBeOpenedIsSaid) {
    Path = Folder.Write("kept.sqlite", std::string(4096, 'x'));
    EXPECT_TRUE(Contains(FailureText([&] { Open(); }), Path));
    Path = Folder.Path("good.sqlite");
    const auto history = Open();
    std::filesystem::remove(Path);
    EXPECT_TRUE(Contains(Ask(*history, {Question(1000), Question(1000)}).at(1).Failure, Path));
}

TEST_F(KeptHistoryTest, AFailureIsToldOnceAndStoringGoesOn) {
    const auto history = Open();
    const std::string elsewhere = Path + ".elsewhere";
    std::filesystem::rename(Path, elsewhere);
    history->Take({ReadingAt(0, 0), ReadingAt(1, 1), ReadingAt(2, 2)}); // at once, as all are to be lost
    EXPECT_TRUE(LoopUntil([&] { return !Told.empty(); }));
    std::filesystem::rename(elsewhere, Path);
    EXPECT_TRUE(LoopUntil([&] { return Told.size() == 2; })) << "without a further reading";
    history->Take({ReadingAt(5000, 5)});
    EXPECT_TRUE(LoopUntil([&] { return Ask(*history, {Question(1000)}).at(0).Columns.size() == 1; }));
    EXPECT_EQ(Told.size(), 2U);
}

TEST(HistoryWriter, ADiskThatStandsStillCostsTheOldestReadings) {
    FakeDisk disk;
    std::vector<std::string> told;
    {
        HistoryWriter writer("mill.sqlite", disk.Store(),
                             [&](const std::string& text) { told.push_back(text); },
                             {.Waiting = 10, .Closing = Unlimited, .TryAgain = std::chrono::milliseconds(1)});
        EXPECT_TRUE(LoopUntil([&] { return disk.Tries > 0; }));
        writer.Take({ReadingAt(0, 0)});
        EXPECT_TRUE(LoopUntil([&] { return disk.Begun == 1; }));
        for (int i = 1; i <= 13; ++i)
            writer.Take({ReadingAt(i, i)});
        EXPECT_TRUE(LoopUntil([&] { return !told.empty(); }));
        disk.Tell("said at the end");
        disk.Free.release(2);
    }
    EXPECT_EQ(disk.Stored, 11U);
    EXPECT_EQ(disk.Missed, (std::pair<std::int64_t, std::int64_t>{Start + 1, 3}));
    ASSERT_EQ(told.size(), 2U);
    EXPECT_TRUE(Contains(told[0], "mill.sqlite does not answer"));
    EXPECT_EQ(told[1], "said at the end");
}

TEST(HistoryWriter, WaitsForADiskWithinLimits) {
    const auto disk = std::make_shared<FakeDisk>();
    const WriterLimits limits = {.Opening = std::chrono::milliseconds(20),
                                 .Closing = std::chrono::milliseconds(20)};
    std::vector<std::string> told;
    const auto tell = [&](const std::string& text) { told.push_back(text); };
    const HistoryStoreMaker never = [disk](const HistoryTeller&) {
        disk->Free.acquire();
        ++disk->Tries;
        return HistoryStore();
    };
    EXPECT_TRUE(
        Contains(FailureText([&] { HistoryWriter("mill.sqlite", never, tell, limits); }), "does not answer"));
    disk->Free.release();
    EXPECT_TRUE(LoopUntil([&] { return disk->Tries == 1; }));
    {
        HistoryWriter writer("mill.sqlite", disk->Store(), tell, limits);
        writer.Take({ReadingAt(0, 0), ReadingAt(1, 1)});
    }
    ASSERT_EQ(told.size(), 1U);
    EXPECT_TRUE(Contains(told[0], "2 readings may be lost"));
    disk->Free.release();
    EXPECT_TRUE(LoopUntil([&] { return disk->Stored == 2; })) << "by the thread that was left behind";
}

} // namespace

} // namespace kavro
