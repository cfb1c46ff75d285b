#include "app/window_focus.h"

#include "app/top_window.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <algorithm>

namespace kavro {

namespace {

// The window that the closed one belonged to, or the dialog that is up over it; else, when that has closed as
// well, or there was none, the same of the main window; else any that is left.
QWidget* NextWindow(QWidget* parent) {
    if (parent && parent->window()->isVisible())
        return TopDialogOver(*parent->window());
    if (QWidget* top = TopWindow())
        return top;
    if (QWidget* dialog = QApplication::activeModalWidget())
        return dialog;
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto left = std::ranges::find_if(windows, &QWidget::isVisible);
    return left == windows.end() ? nullptr : *left;
}

class WindowFocus : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::WindowDeactivate && watched->isWidgetType() &&
            static_cast<QWidget*>(watched)->isWindow())
            Deactivated(static_cast<QWidget*>(watched));
        return QObject::eventFilter(watched, event);
    }

private:
    // A window that is still there afterwards has lost the focus to another program, which keeps it.
    void Deactivated(QWidget* window) {
        QTimer::singleShot(
            0, this,
            [window = QPointer<QWidget>(window), parent = QPointer<QWidget>(window->parentWidget())] {
                const bool closed = !window || !window->isVisible();
                if (!closed || QApplication::activeWindow())
                    return;
                if (QWidget* next = NextWindow(parent))
                    next->activateWindow();
            });
    }
};

} // namespace

void KeepWindowFocus(QApplication& application) {
    application.installEventFilter(new WindowFocus(&application));
}

} // namespace kavro
