#pragma once

#include <QStyledItemDelegate>

#include <functional>

namespace kavro {

/// How a grid of a monitor paints its cells: the tag of a value stands soft at the right end of its cell, as
/// much of it as there is room for.
class MonitorCell : public QStyledItemDelegate {
public:
    /// `doubleClicked` is called for a double click beside the box of a cell.
    MonitorCell(QObject* parent, std::function<void(const QModelIndex& cell)> doubleClicked)
        : QStyledItemDelegate(parent), doubleClicked_(std::move(doubleClicked)) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& cell) const override;

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& cell) override;

private:
    std::function<void(const QModelIndex&)> doubleClicked_;
};

/// The font of tags beside values that are written in `font`.
QFont SmallTagFont(QFont font);

} // namespace kavro
