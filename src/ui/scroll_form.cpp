#include "ui/scroll_form.h"

#include "ui/named.h"

#include <QApplication>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int LeastShareOfRows = 3; // the last row may take that part of the height

// Takes the last row out of a column of rows when it fits below the others; else nothing.
QLayoutItem* TakeLastRow(QLayout& rows, QSize room) {
    const auto* column = qobject_cast<QBoxLayout*>(&rows);
    if (!column || column->direction() != QBoxLayout::TopToBottom || column->count() < 2)
        return nullptr;
    const QMargins margins = rows.contentsMargins();
    const QSize size = rows.itemAt(rows.count() - 1)->minimumSize();
    const bool fits = size.width() + margins.left() + margins.right() <= room.width() &&
                      size.height() * LeastShareOfRows <= room.height();
    return fits ? rows.takeAt(rows.count() - 1) : nullptr;
}

void AddRow(QVBoxLayout& rows, QLayoutItem* row) {
    if (row->layout()) {
        rows.addLayout(row->layout());
        return;
    }
    rows.addWidget(row->widget(), 0, row->alignment());
    delete row;
}

void ScrollDialog(QWidget& form, QScrollArea& area, QSize room) {
    QLayoutItem* lastRow = TakeLastRow(*form.layout(), room);
    auto* content = new QWidget(&form);
    content->setLayout(form.layout()); // takes it from the form, with its controls
    content->layout()->setContentsMargins({});
    area.setWidget(content);
    auto* rows = new QVBoxLayout(&form);
    rows->addWidget(&area, 1);
    if (lastRow)
        AddRow(*rows, lastRow);
}

} // namespace

QSize NeededSize(const QWidget& form, int width) {
    const QLayout* layout = form.layout();
    QSize needed = form.minimumSizeHint().expandedTo(form.minimumSize());
    if (layout && layout->hasHeightForWidth()) {
        const int shown = std::min(std::max(form.width(), needed.width()), width);
        needed.setHeight(std::max(needed.height(), layout->minimumHeightForWidth(shown)));
    }
    return needed;
}

QSize ScrollContent(QWidget& form, QSize room) {
    auto* area = Named(new QScrollArea(&form), "ScrollArea", {});
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    QWidget* focus = form.focusWidget(); // loses the focus as it changes its parent
    if (auto* window = qobject_cast<QMainWindow*>(&form)) {
        area->setWidget(window->takeCentralWidget());
        window->setCentralWidget(area);
    } else {
        ScrollDialog(form, *area, room);
    }
    form.layout()->activate(); // the window may be smaller now
    if (focus)
        focus->setFocus();
    QObject::connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (now && area->isAncestorOf(now))
            area->ensureWidgetVisible(now);
    });
    return {area->verticalScrollBar()->sizeHint().width(), area->horizontalScrollBar()->sizeHint().height()};
}

} // namespace kavro
