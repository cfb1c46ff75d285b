#include "ports/history_columns.h"

#include "link/utc_text.h"
#include "link/wall_time.h"

#include <QString>

#include <algorithm>

namespace kavro {

namespace {

constexpr const char* ReadingsOfValue = "SELECT time, value FROM readings WHERE line = ? AND address = ? AND "
                                        "channel = ? AND time >= ? AND time < ? ORDER BY time";

// Times are compared as texts, as their order is the same, and taken apart at the ends of columns alone: most
// readings of a long stretch are in the middle of one.
class ColumnMaker {
public:
    explicit ColumnMaker(std::int64_t columnMs) : columnMs_(std::max<std::int64_t>(columnMs, 1)) {}

    void Break() {
        if (!columns_.empty())
            columns_.back().Broken = true;
    }

    void Add(const QString& time, double value) {
        if (columns_.empty() || time >= end_) {
            Begin(time, value);
            return;
        }
        TrendColumn& column = columns_.back();
        column.Last = value;
        column.Least = std::min(column.Least, value);
        column.Most = std::max(column.Most, value);
        last_ = time;
    }

    std::vector<TrendColumn> Finish() {
        End();
        return std::move(columns_);
    }

private:
    // A text that is no time, which no history has, is passed over.
    void Begin(const QString& time, double value) {
        const std::optional<std::int64_t> atMs = MsOfUtcText(time.toStdString());
        if (!atMs)
            return;
        End();
        const std::int64_t beginMs = *atMs - *atMs % columnMs_;
        columns_.push_back({.AtMs = beginMs,
                            .FirstMs = *atMs,
                            .LastMs = *atMs,
                            .First = value,
                            .Last = value,
                            .Least = value,
                            .Most = value});
        end_ = QString::fromStdString(UtcMsText(std::min(beginMs + columnMs_, LastMomentMs)));
        last_.clear();
    }

    void End() {
        if (!columns_.empty() && !last_.isEmpty())
            columns_.back().LastMs = MsOfUtcText(last_.toStdString()).value_or(columns_.back().FirstMs);
    }

    std::int64_t columnMs_;
    std::vector<TrendColumn> columns_;
    QString end_;  // of the last column
    QString last_; // reading of the last column, behind its first
};

QVariant Bound(std::int64_t unixMs) {
    return BoundText(UtcMsText(std::clamp<std::int64_t>(unixMs, 0, LastMomentMs)));
}

} // namespace

std::vector<TrendColumn> ReadColumns(const HistoryConnection& connection, const std::string& line,
                                     const HistoryQuestion& question, const std::function<bool()>& stop) {
    QSqlQuery query = connection.Prepared(ReadingsOfValue);
    RunWith(query, {BoundText(line), int{question.Address}, BoundText(question.Channel),
                    Bound(question.FromMs), Bound(question.ToMs)});
    ColumnMaker columns(question.ColumnMs);
    while (!stop() && NextRow(query)) {
        const QVariant value = query.value(1);
        if (value.isNull())
            columns.Break();
        else
            columns.Add(query.value(0).toString(), value.toDouble());
    }
    return columns.Finish();
}

} // namespace kavro
