#include "ui/tinted_label.h"

#include "ui/readable_color.h"

#include <QEvent>

namespace kavro {

TintedLabel::TintedLabel(const QString& text) : QLabel(text) {
    setTextFormat(Qt::PlainText);
}

void TintedLabel::SetTint(const QColor& tint) {
    if (tint == tint_)
        return;
    tint_ = tint;
    Apply();
}

void TintedLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && tint_.isValid())
        Apply();
}

void TintedLabel::Apply() {
    QPalette own; // of the application, but for what is set here
    if (tint_.isValid()) {
        const QColor readable = Readable(tint_, palette().color(QPalette::Window));
        if (testAttribute(Qt::WA_SetPalette) && palette().color(QPalette::WindowText) == readable)
            return; // the change was this label's own
        own.setColor(QPalette::WindowText, readable);
    } else {
        own.setResolveMask(0);
    }
    setPalette(own);
}

} // namespace kavro
