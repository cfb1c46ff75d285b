#include "ui/flow_row.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr int Gap = 6; // pixels between two controls, and between two lines

} // namespace

FlowRow::FlowRow() {
    setContentsMargins({});
}

FlowRow::~FlowRow() = default;

void FlowRow::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
}

QLayoutItem* FlowRow::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)].get() : nullptr;
}

QLayoutItem* FlowRow::takeAt(int index) {
    if (index < 0 || index >= count())
        return nullptr;
    QLayoutItem* const item = items_[static_cast<std::size_t>(index)].release();
    items_.erase(items_.begin() + index);
    return item;
}

int FlowRow::heightForWidth(int width) const {
    return Lay({0, 0, width, 0}, false);
}

QSize FlowRow::minimumSize() const {
    QSize size;
    for (const auto& item : items_)
        size = size.expandedTo(item->minimumSize());
    return size;
}

// All of them in one line.
QSize FlowRow::sizeHint() const {
    QSize size(-Gap, 0);
    for (const auto& item : items_)
        if (!item->isEmpty())
            size = {size.width() + Gap + item->sizeHint().width(),
                    std::max(size.height(), item->sizeHint().height())};
    return size.expandedTo({0, 0});
}

void FlowRow::setGeometry(const QRect& room) {
    QLayout::setGeometry(room);
    Lay(room, true);
}

// The height that the lines take; `move` puts the controls there.
int FlowRow::Lay(const QRect& room, bool move) const {
    int left = room.left();
    int top = room.top();
    int height = 0; // of the present line
    for (const auto& item : items_) {
        if (item->isEmpty())
            continue;
        const QSize size = item->sizeHint();
        if (left > room.left() && left + size.width() > room.left() + room.width()) {
            left = room.left();
            top += height + Gap;
            height = 0;
        }
        if (move)
            item->setGeometry({QPoint(left, top), size});
        left += size.width() + Gap;
        height = std::max(height, size.height());
    }
    return top + height - room.top();
}

} // namespace kavro
