#include "monitor/large_value_form.h"

#include "monitor/threshold_color_form.h"
#include "monitor/trend_style_form.h"
#include "ui/named.h"
#include "ui/note.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace kavro {

namespace {

// Shares of the height.
constexpr double NameShare = 0.16, StateShare = 0.13;
constexpr double TextShare = 0.62;  // of a line's height that its font takes
constexpr double SmallShare = 0.45; // of unit and sign beside the number
constexpr double Margin = 0.03;     // of the width
constexpr double TryOut = 200;      // pixels of the font that is measured

QFont Sized(QFont font, double pixels, bool bold = false) {
    font.setPixelSize(std::max(static_cast<int>(pixels), 1));
    font.setBold(bold);
    return font;
}

// A line of text, no wider than its room.
void PaintLine(QPainter& painter, const QRectF& room, const QString& text) {
    QFont font = Sized(painter.font(), room.height() * TextShare);
    const double width = QFontMetricsF(font).horizontalAdvance(text);
    if (width > room.width())
        font = Sized(font, room.height() * TextShare * room.width() / width);
    painter.setFont(font);
    painter.drawText(room, Qt::AlignCenter, text);
}

} // namespace

LargeValue::LargeValue(LargeValueEvents events) : events_(std::move(events)) {
    Named(this, "LargeValue", "Value");
    setFocusPolicy(Qt::StrongFocus);
    setToolTip("Arrow keys show the next value, Escape all of them");
}

void LargeValue::Show(const LargeText& text) {
    if (text == text_)
        return;
    const bool other = text.Name != text_.Name;
    const bool otherState = text.Side != text_.Side || text.Stale != text_.Stale;
    text_ = text;
    setAccessibleName(text.Name);
    QStringList said = {text.Value + " " + text.Unit, text.State};
    said.removeAll(QString());
    setAccessibleDescription(said.join(", "));
    if (other || otherState)
        Speak(*this);
    update();
}

void LargeValue::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF all = QRectF(rect()).adjusted(width() * Margin, 0, -width() * Margin, 0);
    const double name = all.height() * NameShare, state = all.height() * StateShare;
    painter.setPen(palette().color(QPalette::WindowText));
    PaintLine(painter, QRectF(all.left(), all.top(), all.width(), name), text_.Name);
    PaintValue(painter, all.adjusted(0, name, 0, -state));
    painter.setFont(font());
    painter.setPen(text_.Stale ? palette().color(QPalette::WindowText) : SoftText(palette()));
    PaintLine(painter, QRectF(all.left(), all.bottom() - state, all.width(), state), text_.State);
}

// Sign, number and unit on one line, which fills the room in its width or its height.
void LargeValue::PaintValue(QPainter& painter, const QRectF& room) const {
    const QFont large = Sized(font(), TryOut, true);
    const QFont small = Sized(font(), TryOut * SmallShare);
    const QString unit = text_.Unit.isEmpty() ? QString() : " " + text_.Unit;
    const QString sign = text_.Sign.isEmpty() ? QString() : text_.Sign + " ";
    const QFontMetricsF metrics(large), smallMetrics(small);
    const double width = metrics.horizontalAdvance(text_.Value) + smallMetrics.horizontalAdvance(unit) +
                         smallMetrics.horizontalAdvance(sign);
    const double scale = std::min(room.width() / width, room.height() / metrics.height());
    double at = room.left() + (room.width() - width * scale) / 2;
    const double base = room.center().y() + metrics.capHeight() * scale / 2;
    painter.setPen(text_.Stale ? SoftText(palette()) : ThresholdColor(text_.Side, palette()));
    const auto paint = [&](const QString& text, double pixels, bool bold) {
        painter.setFont(Sized(font(), pixels * scale, bold));
        painter.drawText(QPointF(at, base), text);
        at += QFontMetricsF(painter.font()).horizontalAdvance(text);
    };
    paint(sign, TryOut * SmallShare, false);
    paint(text_.Value, TryOut, true);
    paint(unit, TryOut * SmallShare, false);
}

void LargeValue::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
    case Qt::Key_PageUp:
        events_.Step(-1);
        return;
    case Qt::Key_Right:
    case Qt::Key_Down:
    case Qt::Key_PageDown:
        events_.Step(1);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event->isAutoRepeat()) // a key that is held down has opened it
            events_.Leave();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void LargeValue::mouseDoubleClickEvent(QMouseEvent*) {
    events_.Leave();
}

} // namespace kavro
