#include "ui/scroll_form.h"

#include "ui/named.h"

#include <QApplication>
#include <QMainWindow>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

QSize NeededSize(const QWidget& form, int width) {
    const QLayout* layout = form.layout();
    QSize needed = form.minimumSizeHint().expandedTo(form.minimumSize());
    if (layout && layout->hasHeightForWidth())
        needed.setHeight(std::max(needed.height(), layout->minimumHeightForWidth(std::min(
                                                       std::max(form.width(), needed.width()), width))));
    return needed;
}

QSize ScrollContent(QWidget& form) {
    auto* area = Named(new QScrollArea(&form), "ScrollArea", {});
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    QWidget* focus = form.focusWidget(); // loses the focus as it changes its parent
    if (auto* window = qobject_cast<QMainWindow*>(&form)) {
        area->setWidget(window->takeCentralWidget());
        window->setCentralWidget(area);
    } else {
        auto* content = new QWidget(&form);
        content->setLayout(form.layout()); // takes it from the form, with its controls
        area->setWidget(content);
        auto* layout = new QVBoxLayout(&form);
        layout->setContentsMargins({});
        layout->addWidget(area);
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
