#pragma once

#include "traffic/module_check.h"

#include <QStyledItemDelegate>
#include <QTableWidget>

namespace kavro {

/// Draws how the commands to a module ended: a bar of colours, and the words beside it.
class OutcomeBar : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

/// The modules of a line check with their numbers, a row each.
class CheckTable : public QTableWidget {
public:
    explicit CheckTable(std::string decimalSeparator);

    /// Shows these, in place of all rows.
    void ShowAll(const std::vector<ModuleCheck>& modules);
    /// Shows one anew, in its row.
    void ShowModule(int row, const ModuleCheck& module);

    QSize sizeHint() const override;

private:
    std::string decimalSeparator_;
};

} // namespace kavro
