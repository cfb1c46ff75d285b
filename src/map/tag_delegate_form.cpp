#include "map/tag_delegate_form.h"

#include "map/tag_label_form.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace kavro {

namespace {

constexpr int GapColumns = 2;

QColor InkOf(const QStyleOptionViewItem& item) {
    QPalette colors = item.palette;
    colors.setCurrentColorGroup(item.state & QStyle::State_Active ? QPalette::Active : QPalette::Inactive);
    return item.state & QStyle::State_Selected ? colors.color(QPalette::HighlightedText)
                                               : TagColor(colors, QPalette::Base);
}

} // namespace

void TagDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    QStyledItemDelegate::paint(painter, option, index);
    const QString tag = index.data(TagRole).toString();
    if (tag.isEmpty())
        return;
    QStyleOptionViewItem item = option;
    initStyleOption(&item, index);
    const QStyle& style = *item.widget->style();
    const int margin = style.pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, item.widget) + 1;
    const auto widthOf = [&item](const QString& text) { return item.fontMetrics.horizontalAdvance(text); };
    const int behind = widthOf(item.text + QString(GapColumns, ' '));
    QRect place = style.subElementRect(QStyle::SE_ItemViewItemText, &item, item.widget);
    place.setLeft(place.left() + margin + std::max(behind, widthOf(QString(TagColumn, ' '))));
    place.setRight(item.rect.right() - margin);
    painter->save();
    painter->setFont(item.font);
    painter->setPen(InkOf(item));
    painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      item.fontMetrics.elidedText(tag, Qt::ElideRight, place.width()));
    painter->restore();
}

} // namespace kavro
