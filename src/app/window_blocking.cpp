#include "app/window_blocking.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>

namespace kavro {

namespace {

// Every dialog is polished before it is shown, also those that Qt brings up by itself.
class WindowBlocking : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Polish)
            if (auto* dialog = qobject_cast<QDialog*>(watched); dialog && dialog->parentWidget())
                dialog->setWindowModality(Qt::WindowModal);
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void BlockOwnWindowsOnly(QApplication& application) {
    application.installEventFilter(new WindowBlocking(&application));
}

} // namespace kavro
