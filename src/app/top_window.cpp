#include "app/top_window.h"

#include <QApplication>
#include <QMainWindow>
#include <QWidget>

#include <algorithm>

namespace kavro {

QWidget* TopDialogOver(QWidget& window) {
    for (QWidget* dialog : QApplication::topLevelWidgets())
        if (dialog->isVisible() && dialog->isModal() && dialog->parentWidget() &&
            dialog->parentWidget()->window() == &window)
            return TopDialogOver(*dialog);
    return &window;
}

QWidget* TopWindow() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto main = std::ranges::find_if(windows, [](const QWidget* window) {
        return window->isVisible() && qobject_cast<const QMainWindow*>(window);
    });
    return main == windows.end() ? QApplication::activeModalWidget() : TopDialogOver(**main);
}

} // namespace kavro
