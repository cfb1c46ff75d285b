#include "ui/note.h"

#include "ui/make_room.h"
#include "ui/named.h"
#include "ui/warning_sign.h"

#include <QAccessible>
#include <QScrollArea>
#include <QTimer>

namespace kavro {

void Speak(QWidget& widget) {
    if (!widget.window()->isVisible())
        return;
    QAccessibleEvent spoken(&widget, QAccessible::Alert);
    QAccessible::updateAccessibility(&spoken);
}

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
    Speak(*this);
    QTimer::singleShot(0, this, [this] { ComeIntoView(); }); // when the layouts around it know of it
}

void Note::ComeIntoView() {
    MakeRoom(*window());
    for (QWidget* around = parentWidget(); around; around = around->parentWidget())
        if (auto* area = qobject_cast<QScrollArea*>(around))
            area->ensureWidgetVisible(this);
}

} // namespace kavro
