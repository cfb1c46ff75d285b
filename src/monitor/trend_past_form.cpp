#include "monitor/trend_past_form.h"

#include <QPointer>

#include <algorithm>

namespace kavro {

namespace {

constexpr int SettledMs = 100;
constexpr int SlowMs = 500;
constexpr int Slack = 20; // a part of the span that may be missing while the view goes on with the time

} // namespace

TrendPast::TrendPast(const Trend& trend, QObject& owner) : trend_(trend), settled_(&owner), slow_(&owner) {
    settled_.setSingleShot(true);
    settled_.setInterval(SettledMs);
    settled_.setObjectName("HistorySettled");
    slow_.setSingleShot(true);
    slow_.setInterval(SlowMs);
    connect(&settled_, &QTimer::timeout, this, [this] { Ask(); });
    connect(&slow_, &QTimer::timeout, this, [this] { SetState("Reading the history..."); });
}

void TrendPast::SetHistory(TrendHistory* history) {
    if (history == history_)
        return;
    history_ = history;
    ++asked_; // what is still to come from the old one is not taken
    kept_.clear();
    failed_ = false;
    settled_.stop();
    slow_.stop();
    SetState({});
}

void TrendPast::Look(const std::vector<TrendLine>& lines, const TrendStretch& shown, bool moved) {
    lines_ = lines;
    shown_ = shown;
    std::erase_if(kept_, [&](const auto& entry) {
        return std::ranges::find(lines, entry.first, &TrendLine::Key) == lines.end();
    });
    failed_ = failed_ && !moved;
    if (!history_ || failed_ || (settled_.isActive() && !moved))
        return;
    if (std::ranges::any_of(lines_, [this](const TrendLine& line) { return Missing(line).has_value(); }))
        settled_.start();
}

// What neither the memory nor the last answer has, and half a span more on either side to move on into.
std::optional<HistoryQuestion> TrendPast::Missing(const TrendLine& line) const {
    const auto& [from, to, column] = shown_;
    const std::int64_t span = to - from;
    const std::int64_t known = trend_.KnownSince(line.Index, line.Place, column).value_or(to + span);
    const std::int64_t until = std::min(known, to);
    const auto kept = kept_.find(line.Key);
    const bool covered = kept != kept_.end() && kept->second.ColumnMs == column &&
                         kept->second.FromMs <= from && kept->second.ToMs >= until - span / Slack;
    if (from >= until || covered)
        return {};
    return HistoryQuestion{line.Key.Address, line.Key.Channel, ColumnStart(from - span / 2, column),
                           std::min(known, to + span / 2), column};
}

void TrendPast::Ask() {
    std::vector<HistoryQuestion> questions;
    for (const TrendLine& line : lines_)
        if (auto question = Missing(line))
            questions.push_back(std::move(*question));
    if (!history_ || questions.empty())
        return;
    slow_.start();
    const auto done = [this, alive = QPointer(this), number = ++asked_,
                       questions](std::vector<HistoryAnswer> answers) {
        if (alive && number == asked_)
            Take(questions, answers);
    };
    history_->Ask(questions, done);
}

void TrendPast::Take(const std::vector<HistoryQuestion>& questions, std::vector<HistoryAnswer>& answers) {
    slow_.stop();
    QString failure;
    for (std::size_t number = 0; number < std::min(questions.size(), answers.size()); ++number) {
        const HistoryQuestion& question = questions[number];
        if (!answers[number].Failure.empty())
            failure = QString::fromStdString(answers[number].Failure);
        else
            kept_[{question.Address, question.Channel}] = {question.FromMs, question.ToMs, question.ColumnMs,
                                                           std::move(answers[number].Columns)};
    }
    failed_ = !failure.isEmpty();
    state_ = failure;
    if (Changed)
        Changed();
}

void TrendPast::SetState(const QString& state) {
    if (state == state_)
        return;
    state_ = state;
    if (Changed)
        Changed();
}

std::vector<TrendColumn> TrendPast::Columns(const TrendLine& line, const TrendStretch& shown) const {
    auto memory = trend_.Columns(line.Index, line.Place, shown.FromMs, shown.ToMs, shown.ColumnMs);
    const auto kept = kept_.find(line.Key);
    auto columns = kept == kept_.end() ? std::move(memory) : MergeColumns(memory, kept->second);
    BreakAtPauses(columns);
    std::erase_if(columns, [&](const TrendColumn& column) {
        return column.LastMs < shown.FromMs || column.FirstMs >= shown.ToMs;
    });
    return columns;
}

std::optional<std::int64_t> TrendPast::Oldest(const std::vector<TrendLine>& lines) const {
    std::optional<std::int64_t> oldest;
    for (const TrendLine& line : lines) {
        auto known = trend_.Oldest(line.Index, line.Place);
        if (const auto kept = kept_.find(line.Key); kept != kept_.end() && !kept->second.Columns.empty())
            known = std::min(known.value_or(kept->second.ToMs), kept->second.Columns.front().FirstMs);
        if (known)
            oldest = std::min(oldest.value_or(*known), *known);
    }
    return oldest;
}

} // namespace kavro
