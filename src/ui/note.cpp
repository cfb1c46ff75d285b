#include "ui/note.h"

#include "ui/named.h"
#include "ui/warning_sign.h"

#include <QAccessible>
#include <QLayout>
#include <QScreen>
#include <QScrollArea>
#include <QTimer>

namespace kavro {

Note::Note(const QString& name, QWidget& form) : QLabel(&form) {
    Named(this, name, {});
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    hide();
}

void Note::Tell(const QString& text) {
    const QString shown = text.isEmpty() ? QString() : WarningSign + text;
    if (shown == this->text())
        return;
    setText(shown);
    setVisible(!shown.isEmpty());
    if (shown.isEmpty() || !window()->isVisible())
        return;
    QAccessibleEvent spoken(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&spoken);
    QTimer::singleShot(0, this, [this] { MakeRoom(); }); // when the layouts around it know of it
}

// What wraps does not make its window grow by itself, and would squeeze the rest.
void Note::MakeRoom() {
    QWidget& form = *window();
    const int needed = form.layout() ? form.layout()->totalHeightForWidth(form.width()) : 0;
    if (needed > form.height()) {
        form.resize(form.width(), needed);
        const int beyond = form.frameGeometry().bottom() - form.screen()->availableGeometry().bottom();
        if (beyond > 0) // else its buttons would be out of sight
            form.move(form.x(), form.y() - beyond);
    }
    for (QWidget* around = parentWidget(); around; around = around->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(around))
            area->ensureWidgetVisible(this);
}

} // namespace kavro
