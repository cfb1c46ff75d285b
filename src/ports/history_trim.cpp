#include "ports/history_trim.h"

#include "link/utc_text.h"

#include <chrono>

namespace kavro {

namespace {

constexpr std::int64_t HourMs = 3'600'000, DayMs = 24 * HourMs;
constexpr auto SliceTime = std::chrono::milliseconds(10); // and what the commit takes
constexpr int RowsAtOnce = 200;

// The first rows of a value as far as they are too old: up to the row behind them, if that is one, too.
constexpr const char* DeleteRows =
    "DELETE FROM readings WHERE line = ? AND address = ? AND channel = ? AND time < coalesce((SELECT time "
    "FROM readings WHERE line = ? AND address = ? AND channel = ? AND time < ? ORDER BY time LIMIT 1 "
    "OFFSET ?), ?)";

} // namespace

bool HistoryTrim::Due(std::int64_t nowMs) const {
    return begunMs_ == INT64_MIN || nowMs - begunMs_ >= HourMs || nowMs < begunMs_;
}

void HistoryTrim::Slice(const HistoryConnection& connection, std::int64_t nowMs) {
    if (!going_ && !Due(nowMs))
        return;
    if (!going_) {
        left_ = ValuesIn(connection);
        std::erase_if(left_, [this](const HistoryValue& value) { return value.Line != line_; });
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
