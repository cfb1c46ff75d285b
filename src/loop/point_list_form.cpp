#include "loop/point_list_form.h"

#include "ui/named.h"
#include "ui/read_only_table.h"
#include "ui/readable_color.h"

#include <QHeaderView>

namespace kavro {

namespace {

constexpr int NameColumn = 0, KindColumn = 1, ResultColumn = 2, ColumnTotal = 3;
constexpr int NameCharacters = 28, KindCharacters = 16, ResultCharacters = 9;
constexpr int Rows = 12;

QColor TintOf(const std::optional<LoopResult>& result, const QPalette& palette) {
    if (!result || result->Outcome == LoopOutcome::Skip)
        return palette.color(QPalette::Text);
    const QColor plain = result->Outcome == LoopOutcome::Pass ? QColor(0, 110, 0) : QColor(176, 0, 0);
    return Readable(plain, palette.color(QPalette::Base));
}

} // namespace

PointList::PointList(const LoopRecord& record, std::function<void(int entry)> chosen)
    : QTableWidget(static_cast<int>(record.Entries.size()), ColumnTotal), record_(record) {
    Named(this, "Points", "Channels to be checked");
    ShowReadOnly(*this, {"Channel", "Kind", "Result"});
    const int character = fontMetrics().averageCharWidth();
    setColumnWidth(NameColumn, character * NameCharacters);
    setColumnWidth(KindColumn, character * KindCharacters);
    setColumnWidth(ResultColumn, character * ResultCharacters);
    horizontalHeader()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    setMinimumSize(character * (NameCharacters + KindCharacters + ResultCharacters),
                   fontMetrics().height() * Rows);
    for (int row = 0; row < rowCount(); ++row)
        for (int column = 0; column < ColumnTotal; ++column)
            setItem(row, column, new QTableWidgetItem);
    connect(this, &QTableWidget::cellActivated, this, [chosen = std::move(chosen)](int row) { chosen(row); });
}

void PointList::Show(int current) {
    for (int row = 0; row < rowCount(); ++row) {
        const LoopEntry& entry = record_.Entries[static_cast<std::size_t>(row)];
        const QString note = QString::fromStdString(entry.Note);
        item(row, NameColumn)->setText(QString::fromStdString(ShortName(entry.Point)));
        item(row, NameColumn)->setToolTip(QString::fromStdString(PlaceText(entry.Point)));
        item(row, KindColumn)->setText(LoopKindText(entry.Point.Kind));
        item(row, ResultColumn)
            ->setText((entry.Result ? LoopOutcomeText(entry.Result->Outcome) : "") +
                      QString(note.isEmpty() ? "" : " *"));
        item(row, ResultColumn)->setToolTip(note);
        item(row, ResultColumn)->setForeground(TintOf(entry.Result, palette()));
    }
    if (current < rowCount() && current != currentRow()) {
        setCurrentCell(current, NameColumn);
        scrollToItem(item(current, NameColumn), PositionAtCenter);
    }
}

} // namespace kavro
