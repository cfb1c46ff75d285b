#include "monitor/monitor_cell_form.h"

#include "map/tag_label_form.h"
#include "monitor/monitor_table_form.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

namespace kavro {

namespace {

constexpr double TagScale = 0.88;
constexpr int Gap = 8;        // between value and tag, and behind the tag
constexpr int LeastShown = 3; // of the characters of a tag

const QStyle& StyleOf(const QStyleOptionViewItem& option) {
    return option.widget ? *option.widget->style() : *QApplication::style();
}

} // namespace

QFont SmallTagFont(QFont font) {
    font.setItalic(false);
    font.setBold(false);
    font.setPointSizeF(font.pointSizeF() * TagScale);
    return font;
}

void MonitorCell::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& cell) const {
    QStyledItemDelegate::paint(painter, option, cell);
    const QString tag = cell.data(MonitorTable::TagRole).toString();
    if (tag.isEmpty())
        return;
    QStyleOptionViewItem shown = option;
    initStyleOption(&shown, cell);
    QRect room = StyleOf(shown).subElementRect(QStyle::SE_ItemViewItemText, &shown, shown.widget);
    const int value = QFontMetrics(shown.font).horizontalAdvance(shown.text);
    room.adjust(value + (value > 0 ? 2 * Gap : Gap), 0, -Gap, 0);
    const QFont font = SmallTagFont(shown.font);
    const QFontMetrics metrics(font);
    if (room.width() < LeastShown * metrics.averageCharWidth())
        return;
    const bool marked = shown.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setFont(font);
    painter->setPen(marked ? shown.palette.color(QPalette::HighlightedText)
                           : TagColor(shown.palette, QPalette::Base));
    painter->drawText(room, Qt::AlignRight | Qt::AlignVCenter,
                      metrics.elidedText(tag, Qt::ElideRight, room.width()));
    painter->restore();
}

bool MonitorCell::editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                              const QModelIndex& cell) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        QStyleOptionViewItem shown = option;
        initStyleOption(&shown, cell);
        const QRect box =
            StyleOf(shown).subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &shown, shown.widget);
        const auto& click = static_cast<const QMouseEvent&>(*event);
        const bool onBox = cell.flags().testFlag(Qt::ItemIsUserCheckable) && box.contains(click.pos());
        if (!onBox && click.button() == Qt::LeftButton) {
            doubleClicked_(cell);
            return true;
        }
    }
    return QStyledItemDelegate::editorEvent(event, model, option, cell);
}

} // namespace kavro
