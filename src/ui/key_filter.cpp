#include "ui/key_filter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace kavro {

namespace {

class KeyFilter : public QObject {
public:
    KeyFilter(QWidget& box, std::function<void(int&)> filter) : QObject(&box), filter_(std::move(filter)) {
        box.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress)
            return QObject::eventFilter(watched, event);
        const auto& key = static_cast<const QKeyEvent&>(*event);
        const bool shortcut =
            (key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
        const QString text = key.text();
        if (shortcut || text.isEmpty() || !text.at(0).isPrint())
            return false;
        int keyCode = text.at(0).unicode();
        filter_(keyCode);
        if (keyCode == 0)
            QApplication::beep();
        return keyCode == 0;
    }

private:
    std::function<void(int&)> filter_;
};

} // namespace

void FilterKeys(QWidget& box, std::function<void(int& keyCode)> filter) {
    new KeyFilter(box, std::move(filter)); // owned by the box
}

} // namespace kavro
