#pragma once

#include "monitor/trend.h"
#include "monitor/trend_history.h"
#include "monitor/trend_line_form.h"
#include "monitor/trend_merge.h"

#include <QString>
#include <QTimer>

#include <functional>
#include <map>
#include <vector>

namespace kavro {

/// A stretch of time in columns, as a view shows it.
struct TrendStretch {
    std::int64_t FromMs = 0, ToMs = 0;
    std::int64_t ColumnMs = 1;
};

/// What is known of the lines of a trend: what the memory has, and in a history, once the view stands still,
/// what it does not have. Of the history only what was asked last is kept, a stretch a line.
class TrendPast : public QObject {
public:
    TrendPast(const Trend& trend, QObject& owner);

    /// Where to ask, or nullptr.
    void SetHistory(TrendHistory* history);
    bool HasHistory() const { return history_ != nullptr; }

    /// Tells what is shown now, and whether the user has just moved it.
    void Look(const std::vector<TrendLine>& lines, const TrendStretch& shown, bool moved);

    /// What is known of a line, ends rounded to whole columns.
    std::vector<TrendColumn> Columns(const TrendLine& line, const TrendStretch& shown) const;

    /// Since when something is known of a line.
    std::optional<std::int64_t> Oldest(const std::vector<TrendLine>& lines) const;

    /// "Reading the history..." when that takes a while, or why it failed; else empty.
    const QString& State() const { return state_; }

    /// Told when there is something else to show.
    std::function<void()> Changed;

private:
    std::optional<HistoryQuestion> Missing(const TrendLine& line) const;
    void Ask();
    void Take(const std::vector<HistoryQuestion>& questions, std::vector<HistoryAnswer>& answers);
    void SetState(const QString& state);

    const Trend& trend_;
    TrendHistory* history_ = nullptr;
    std::vector<TrendLine> lines_; // as the view was told last
    TrendStretch shown_;
    std::map<ValueKey, KeptStretch> kept_;
    QTimer settled_, slow_;
    QString state_;
    int asked_ = 0;       // number of the last question
    bool failed_ = false; // nothing more is asked until the user moves on
};

} // namespace kavro
