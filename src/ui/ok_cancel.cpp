#include "ui/ok_cancel.h"

#include "ui/named.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QPushButton>

namespace kavro {

namespace {

class HeldEnterFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const auto& press = static_cast<const QKeyEvent&>(*event);
            if (press.isAutoRepeat() && (press.key() == Qt::Key_Return || press.key() == Qt::Key_Enter))
                return true;
        }
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

QDialogButtonBox* OkAndCancel(QDialog& dialog, std::function<void()> ok) {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    Named(buttons->button(QDialogButtonBox::Ok), "OKBtn", "OK");
    Named(buttons->button(QDialogButtonBox::Cancel), "CancelBtn", "Cancel")->setText("Cancel");
    // The second half of a double click may reach a dialog that has just been left.
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, [&dialog, ok = std::move(ok)] {
        if (dialog.isVisible())
            ok();
    });
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* heldEnter = new HeldEnterFilter(&dialog);
    const QObjectList receivers = {&dialog, buttons->button(QDialogButtonBox::Ok),
                                   buttons->button(QDialogButtonBox::Cancel)};
    for (QObject* receiver : receivers)
        receiver->installEventFilter(heldEnter);
    return buttons;
}

} // namespace kavro
