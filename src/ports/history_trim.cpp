#include "ports/history_trim.h"

#include "link/utc_text.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace kavro {

namespace {

constexpr std::int64_t HourMs = 3'600'000, DayMs = 24 * HourMs;
constexpr std::int64_t LeapMs = DayMs + HourMs;           // longer than any interval of a monitor
constexpr auto SliceTime = std::chrono::milliseconds(10); // and what the commit takes
constexpr int RowsAtOnce = 200;

// The first rows of a value as far as they are too old: up to the row behind them, if that is one, too.
constexpr const char* DeleteRows =
    "DELETE FROM readings WHERE line = ? AND address = ? AND channel = ? AND time < coalesce((SELECT time "
    "FROM readings WHERE line = ? AND address = ? AND channel = ? AND time < ? ORDER BY time LIMIT 1 "
    "OFFSET ?), ?)";

std::vector<HistoryValue> ValuesOfLine(const HistoryConnection& connection, const std::string& line) {
    std::vector<HistoryValue> values = ValuesIn(connection);
    std::erase_if(values, [&line](const HistoryValue& value) { return value.Line != line; });
    return values;
}

// Moment of the newest reading of a line; nothing when it has none.
std::optional<std::int64_t> NewestMs(const HistoryConnection& connection, const std::string& line) {
    std::optional<std::int64_t> newest;
    QSqlQuery query = connection.Prepared("SELECT max(time) FROM readings WHERE line = ? AND address = ? AND "
                                          "channel = ?");
    for (const HistoryValue& value : ValuesOfLine(connection, line)) {
        RunWith(query, {BoundText(line), qlonglong{value.Address}, BoundText(value.Channel)});
        if (NextRow(query))
            newest = std::max(newest, MsOfUtcText(TextAt(query, 0)));
        query.finish();
    }
    return newest;
}

} // namespace

HistoryTrim::HistoryTrim(const HistoryConnection& connection, std::string line, int keepDays)
    : line_(std::move(line)), keepDays_(keepDays), lastMs_(NewestMs(connection, line_)) {}

bool HistoryTrim::Trusts(std::int64_t nowMs) {
    if (std::abs(nowMs - lastMs_.value_or(nowMs)) > LeapMs)
        evenSinceMs_ = nowMs;
    lastMs_ = nowMs;
    return nowMs - evenSinceMs_ >= HourMs;
}

bool HistoryTrim::Due(std::int64_t nowMs) const {
    return begunMs_ == INT64_MIN || nowMs - begunMs_ >= HourMs || nowMs < begunMs_;
}

void HistoryTrim::Slice(const HistoryConnection& connection, std::int64_t nowMs) {
    if (!Trusts(nowMs) || (!going_ && !Due(nowMs)))
        return;
    if (!going_) {
        left_ = ValuesOfLine(connection, line_);
        before_ = UtcMsText(nowMs - keepDays_ * DayMs);
        begunMs_ = nowMs;
        going_ = true;
    }
    const auto end = std::chrono::steady_clock::now() + SliceTime;
    Transaction transaction(connection);
    while (going_ && std::chrono::steady_clock::now() < end)
        going_ = DeleteSome(connection);
    transaction.Commit();
}

// False when nothing is left.
bool HistoryTrim::DeleteSome(const HistoryConnection& connection) {
    if (left_.empty()) {
        QSqlQuery gaps = connection.Prepared("DELETE FROM gaps WHERE line = ? AND \"to\" < ?");
        RunWith(gaps, {BoundText(line_), BoundText(before_)});
        return false;
    }
    const HistoryValue& value = left_.back();
    const QVariant line = BoundText(value.Line), address = qlonglong{value.Address},
                   channel = BoundText(value.Channel), before = BoundText(before_);
    QSqlQuery rows = connection.Prepared(DeleteRows);
    RunWith(rows, {line, address, channel, line, address, channel, before, RowsAtOnce, before});
    if (rows.numRowsAffected() < RowsAtOnce)
        left_.pop_back();
    return true;
}

} // namespace kavro
