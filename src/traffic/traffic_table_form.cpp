#include "traffic/traffic_table_form.h"

#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <array>

namespace kavro {

namespace {

// A text as wide as most of each column; the last one takes the rest.
constexpr std::array<const char*, 8> Samples = {"00:00:00.000", "+000.000",      "000 (00H)",
                                                "000000",       "$000000000000", ">+00.000+00.000+00.0",
                                                "0000.0",       "incomplete"};
constexpr int CellMargins = 12; // pixels
constexpr int RowMargins = 4;
constexpr const char* HexSample = "21 30 31 30 38 30 36 30 30 0D"; // a configuration
constexpr int ShownRows = 20;
constexpr int LookMs = 50;       // for the next failure, in one go
constexpr int WordsColumns = 60; // characters

} // namespace

TrafficTable::TrafficTable(TrafficModel& model) : model_(model) {
    Named(this, "TrafficTable", "Traffic");
    setModel(&model);
    setSelectionBehavior(SelectRows);
    setTabKeyNavigation(false); // Tab leaves the table
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setHorizontalScrollMode(ScrollPerPixel);
    const QFontMetrics metrics(FixedFont());
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(std::max(metrics.height(), QFontMetrics(font()).height()) +
                                            RowMargins);
    horizontalHeader()->setHighlightSections(false);
    int width = 0;
    for (std::size_t i = 0; i < Samples.size(); ++i) {
        setColumnWidth(static_cast<int>(i), metrics.horizontalAdvance(Samples[i]) + CellMargins);
        width += columnWidth(static_cast<int>(i));
    }
    setMinimumSize(fontMetrics().averageCharWidth() * WordsColumns,
                   verticalHeader()->defaultSectionSize() * 5);
    preferred_ = {width + verticalScrollBar()->sizeHint().width() + 2 * frameWidth() +
                      fontMetrics().averageCharWidth() * WordsColumns,
                  verticalHeader()->defaultSectionSize() * ShownRows};
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this](int value) {
        if (!moving_)
            following_ = value == verticalScrollBar()->maximum();
    });
}

// The words take what is left, but never less than they need.
void TrafficTable::resizeEvent(QResizeEvent* event) {
    const int last = model_.columnCount() - 1;
    const int left = viewport()->width() - columnViewportPosition(last) - horizontalOffset();
    setColumnWidth(last, std::max(left, fontMetrics().averageCharWidth() * WordsColumns));
    QTableView::resizeEvent(event);
    const QScopedValueRollback moves(moving_, true);
    if (following_)
        scrollToBottom();
}

bool TrafficTable::Advance(int milliseconds) {
    const QScopedValueRollback moves(moving_, true);
    QScrollBar& bar = *verticalScrollBar();
    if (const int gone = model_.LetGo(); gone > 0 && !following_)
        bar.setValue(bar.value() - gone);
    const int before = model_.rowCount();
    const bool caughtUp = model_.Advance(milliseconds);
    if (following_ && model_.rowCount() != before)
        scrollToBottom();
    if (caughtUp && current_)
        Return();
    return caughtUp;
}

void TrafficTable::SetFilter(const TrafficFilter& filter) {
    const QScopedValueRollback moves(moving_, true);
    if (currentIndex().isValid())
        current_ = model_.Number(currentIndex().row());
    model_.SetFilter(filter);
}

void TrafficTable::Return() {
    const int row = model_.RowOf(*current_);
    const bool shown = row < model_.rowCount() && model_.Number(row) == *current_;
    current_.reset();
    if (shown && !following_)
        GoTo(row);
}

void TrafficTable::GoTo(int row) {
    const QScopedValueRollback moves(moving_, true);
    following_ = false;
    setCurrentIndex(model_.index(row, 0));
    scrollTo(currentIndex(), PositionAtCenter);
}

TrafficModel::Place TrafficTable::GoToNextFailure() {
    const auto place = model_.NextFailure(currentIndex().isValid() ? currentIndex().row() : -1, LookMs);
    if (place.Row >= 0)
        GoTo(place.Row);
    return place;
}

void TrafficTable::SetHex(bool hex) {
    const QFontMetrics metrics(FixedFont());
    for (const auto column : {TrafficColumn::Command, TrafficColumn::Reply}) {
        const auto i = static_cast<std::size_t>(column);
        const int width = metrics.horizontalAdvance(hex ? HexSample : Samples[i]);
        setColumnWidth(static_cast<int>(i), width + CellMargins);
    }
    model_.SetHex(hex);
}

int TrafficTable::SelectedCount() const {
    int count = 0;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        count += range.height();
    return count;
}

QString TrafficTable::SelectedText() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom() && rows.size() < MostCopied; ++row)
            rows.push_back(row);
    std::ranges::sort(rows);
    QString text;
    for (const int row : rows)
        for (int column = 0; column < model_.columnCount(); ++column)
            text += model_.CellText(row, static_cast<TrafficColumn>(column)) +
                    (column + 1 < model_.columnCount() ? '\t' : '\n');
    return text;
}

} // namespace kavro
