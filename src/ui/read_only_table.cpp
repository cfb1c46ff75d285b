#include "ui/read_only_table.h"

#include <QHeaderView>
#include <QTableWidget>

namespace kavro {

namespace {

constexpr int RowRoom = 9; // pixels around the text of a row

} // namespace

void ShowReadOnly(QTableWidget& table, const QStringList& headings) {
    table.setColumnCount(static_cast<int>(headings.size()));
    table.setHorizontalHeaderLabels(headings);
    table.verticalHeader()->hide();
    table.verticalHeader()->setDefaultSectionSize(table.fontMetrics().height() + RowRoom);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setSelectionMode(QAbstractItemView::SingleSelection);
    table.setWordWrap(false);
    table.setTabKeyNavigation(false);
}

} // namespace kavro
