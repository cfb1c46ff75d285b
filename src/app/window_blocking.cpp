#include "app/window_blocking.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QWindow>

namespace kavro {

namespace {

// Every dialog is polished before it is shown, also those that Qt brings up by itself.
class WindowBlocking : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Polish)
            if (auto* dialog = qobject_cast<QDialog*>(watched); dialog && dialog->parentWidget())
                Restrict(*dialog);
        return QObject::eventFilter(watched, event);
    }

private:
    static void Restrict(QDialog& dialog) {
        dialog.setWindowModality(Qt::WindowModal);
        if (QWindow* window = dialog.windowHandle()) // made already, and not told by the dialog
            window->setModality(Qt::WindowModal);
    }
};

} // namespace

void BlockOwnWindowsOnly(QApplication& application) {
    application.installEventFilter(new WindowBlocking(&application));
}

} // namespace kavro
