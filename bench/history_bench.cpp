// A history of ten million readings: the longest time between two turns of the event loop while a trend looks
// back into it and readings are kept, how long the answers take, and how fast readings are stored.

#include "bench/figures.h"
#include "link/wall_time.h"
#include "ports/history_schema.h"
#include "ports/kept_history.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <utility>

namespace kavro {

namespace {

constexpr int Values = 100;
constexpr int SecondsKept = 100'000;
constexpr int SecondsAtOnce = 1000;          // in a transaction of the filling
constexpr std::int64_t From = 1'772'409'600; // 2026-03-02
constexpr int Columns = 1600;                // about the pixels of a wide trend
constexpr int PanningMs = 3000;

struct Span {
    const char* Name;
    std::int64_t Seconds;
};

constexpr Span Spans[] = {{"an hour", 3600}, {"a day", 86'400}, {"the whole", SecondsKept}};

std::int16_t AddressOf(int value) {
    return static_cast<std::int16_t>(1 + value / 8);
}

std::string ChannelOf(int value) {
    return std::to_string(value % 8);
}

// The last of what is kept.
HistoryQuestion Question(int value, const Span& span) {
    const std::int64_t end = From + SecondsKept;
    return {.Address = AddressOf(value),
            .Channel = ChannelOf(value),
            .FromMs = (end - span.Seconds) * 1000,
            .ToMs = end * 1000,
            .ColumnMs = std::max<std::int64_t>(1000, span.Seconds * 1000 / Columns)};
}

std::vector<HistoryQuestion> Questions(int values, const Span& span) {
    std::vector<HistoryQuestion> questions;
    questions.reserve(static_cast<std::size_t>(values));
    for (int value = 0; value < values; ++value)
        questions.push_back(Question(value, span));
    return questions;
}

std::vector<Reading> Turn() {
    const ChannelValue value = {.Channel = "0", .Text = "+1.2340", .Number = 1.234, .Unit = "V"};
    return {{.Time = SystemTime(), .Address = 200, .Model = "8250", .Value = value}};
}

struct Bench {
    // In the order in which a monitor would have stored them, so that the file is as scattered as its own.
    void Fill() {
        HistoryConnection connection(Path, HistoryConnection::Access::Make);
        connection.Run("PRAGMA synchronous = OFF");
        const double start = Seconds(CLOCK_MONOTONIC);
        QSqlQuery insert = connection.Prepared(
            "WITH RECURSIVE moment(n) AS (SELECT ? UNION ALL SELECT n + 1 FROM moment LIMIT ?), "
            "place(v) AS (SELECT 0 UNION ALL SELECT v + 1 FROM place LIMIT ?) "
            "INSERT INTO readings SELECT 'line', 1 + v / 8, '8250', v % 8, "
            "strftime('%Y-%m-%dT%H:%M:%fZ', n, 'unixepoch'), n * (v + 7) % 1000 / 100.0, "
            "printf('%+.4f', n * (v + 7) % 1000 / 100.0), 'V', 'ok' FROM moment CROSS JOIN place");
        for (int at = 0; at < SecondsKept; at += SecondsAtOnce)
            RunWith(insert, {QVariant::fromValue(static_cast<qlonglong>(From + at)), SecondsAtOnce, Values});
        insert.clear();
        connection.Run("PRAGMA wal_checkpoint(TRUNCATE)");
        std::printf("  %-52s %10.2f s\n", "filling ten million readings in",
                    Seconds(CLOCK_MONOTONIC) - start);
        std::printf("  %-52s %10.1f MiB\n", "size of the file",
                    static_cast<double>(std::filesystem::file_size(Path)) / (1024 * 1024));
    }

    // Seconds of a plain SELECT of the same rows.
    double Plain(int values, const Span& span) const {
        const HistoryConnection connection(Path, HistoryConnection::Access::Read);
        const double start = Seconds(CLOCK_MONOTONIC);
        for (int value = 0; value < values; ++value) {
            QSqlQuery query = connection.Prepared(
                "SELECT time, value FROM readings WHERE line = 'line' AND address = ? AND channel = ? "
                "ORDER BY time DESC LIMIT ?");
            RunWith(query, {AddressOf(value), BoundText(ChannelOf(value)),
                            QVariant::fromValue(static_cast<qlonglong>(span.Seconds))});
            while (NextRow(query))
                query.value(1).toDouble();
        }
        return Seconds(CLOCK_MONOTONIC) - start;
    }

    // Acts, and runs the event loop until it is left, with a hundred readings a second taken meanwhile: the
    // longest time between two turns in seconds.
    template <class Act>
    double Longest(KeptHistory& history, Act act) {
        const double start = Seconds(CLOCK_MONOTONIC);
        double longest = 0;
        double last = start;
        int taken = 0;
        const auto turn = [&] {
            const double now = Seconds(CLOCK_MONOTONIC);
            longest = std::max(longest, now - std::exchange(last, now));
            for (; taken < (now - start) * 100; ++taken)
                history.Take(Turn());
        };
        QTimer turns;
        QObject::connect(&turns, &QTimer::timeout, turn);
        turns.start(1);
        act();
        QCoreApplication::exec();
        turn();
        return longest;
    }

    void LookBack(KeptHistory& history, int values, const Span& span) {
        std::size_t columns = 0;
        const double start = Seconds(CLOCK_MONOTONIC);
        const double longest = Longest(history, [&] {
            history.Past().Ask(Questions(values, span), [&](const std::vector<HistoryAnswer>& answers) {
                for (const HistoryAnswer& answer : answers)
                    columns += answer.Columns.size();
                QCoreApplication::exit();
            });
        });
        const double took = Seconds(CLOCK_MONOTONIC) - start;
        const std::string what = std::string(span.Name) + " of " + std::to_string(values);
        std::printf("  %-16s %9.1f ms longest, goal 100; answer %7.3f s, plain SELECT %7.3f, %6zu columns\n",
                    what.c_str(), longest * 1000, took, Plain(values, span), columns);
    }

    // Each question takes the place of the one before, as while a trend is dragged.
    void Pan(KeptHistory& history) {
        QTimer drags;
        int asked = 0, answered = 0;
        QObject::connect(&drags, &QTimer::timeout, [&] {
            ++asked;
            history.Past().Ask(Questions(8, Spans[2]),
                               [&](const std::vector<HistoryAnswer>&) { ++answered; });
        });
        const double longest = Longest(history, [&] {
            drags.start(20);
            LeaveLater();
        });
        std::printf("  %-16s %9.1f ms longest, goal 100; %d asked, %d answered\n", "asked anew",
                    longest * 1000, asked, answered);
    }

    static void LeaveLater() {
        QTimer::singleShot(PanningMs, [] { QCoreApplication::exit(); });
    }

    void Store() const {
        constexpr int Turns = 100'000;
        const double start = Seconds(CLOCK_MONOTONIC);
        double longest = 0;
        auto history = OpenKeptHistory({.Path = Path, .Line = "other", .KeepDays = {}}, Say);
        for (int i = 0; i < Turns; ++i) {
            std::vector<Reading> turn = Turn();
            turn.front().Time.UnixMs = (From + i) * 1000;
            const double before = Seconds(CLOCK_MONOTONIC);
            history->Take(turn);
            longest = std::max(longest, Seconds(CLOCK_MONOTONIC) - before);
        }
        const double taken = Seconds(CLOCK_MONOTONIC) - start;
        history.reset();
        std::printf("  %-52s %10.0f a second; taken at %.0f, longest %.1f ms\n",
                    "stored, on the disk at the end", Turns / (Seconds(CLOCK_MONOTONIC) - start),
                    Turns / taken, longest * 1000);
    }

    void Run() {
        Fill();
        const auto history = OpenKeptHistory({.Path = Path, .Line = "line", .KeepDays = {}}, Say);
        std::printf("  %-16s %9.1f ms longest\n", "nothing asked", Longest(*history, LeaveLater) * 1000);
        for (const Span& span : Spans)
            for (const int values : {1, 8, 32})
                LookBack(*history, values, span);
        Pan(*history);
        Store();
    }

    static void Say(const std::string& text) { std::printf("  %s\n", text.c_str()); }

    QTemporaryDir Folder;
    std::string Path = Folder.filePath("bench.sqlite").toStdString();
};

} // namespace

} // namespace kavro

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    std::printf("history\n");
    const double start = kavro::Seconds(CLOCK_MONOTONIC);
    kavro::Bench().Run();
    std::printf("  %-52s %10.1f s\n", "the whole bench", kavro::Seconds(CLOCK_MONOTONIC) - start);
}
