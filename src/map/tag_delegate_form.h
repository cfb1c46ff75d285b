#pragma once

#include <QStyledItemDelegate>

namespace kavro {

/// What an item of a list holds its tag by; its text stays its own.
inline constexpr int TagRole = Qt::UserRole + 1;

/// Where tags stand in a list of modules, in columns of its text; behind the line where that is longer.
inline constexpr int TagColumn = 61;

/// Draws an item of a list, and its tag behind its text.
class TagDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
};

} // namespace kavro
