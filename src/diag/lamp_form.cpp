#include "diag/lamp_form.h"

#include "map/tag_label_form.h"

#include <QPainter>

namespace kavro {

namespace {

constexpr double EdgeWidth = 1.6;
constexpr double Rounding = 3;
constexpr double TextShare = 0.62; // height of the digit, of the lamp's
constexpr int LinesHigh10 = 16;    // size of a lamp in tenths of a line of text
constexpr QRgb On = 0x13783A;      // dark enough for a white digit, light enough for a dark window

} // namespace

void DrawLamp(QPainter& painter, const QRectF& place, LampPicture picture, const QPalette& palette,
              bool stale) {
    const bool on = picture == LampPicture::Bit1;
    const QColor ink = palette.color(QPalette::WindowText);
    const QRectF body = place.adjusted(EdgeWidth, EdgeWidth, -EdgeWidth, -EdgeWidth);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, EdgeWidth, stale ? Qt::DotLine : Qt::SolidLine));
    painter.setBrush(on && !stale ? QBrush(QColor(On)) : QBrush(Qt::NoBrush));
    if (on)
        painter.drawRoundedRect(body, Rounding, Rounding);
    else
        painter.drawEllipse(body);
    QFont font = painter.font();
    font.setPixelSize(qMax(1, static_cast<int>(place.height() * TextShare)));
    font.setBold(on);
    painter.setFont(font);
    painter.setPen(on && !stale ? QColor(Qt::white) : ink);
    painter.drawText(body, Qt::AlignCenter, on ? "1" : "0");
    painter.restore();
}

int LampSide(const QFontMetrics& font) {
    return font.height() * LinesHigh10 / 10;
}

Lamp::Lamp(const QString& name, const QString& caption) : caption_(caption) {
    setObjectName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    Describe();
}

void Lamp::Show(LampPicture picture) {
    if (picture == picture_)
        return;
    picture_ = picture;
    Describe();
}

void Lamp::SetStale(bool stale) {
    stale_ = stale;
    Describe();
}

void Lamp::ShowTag(const TagAndNote& tag) {
    tag_ = ShownTag(tag);
    setToolTip(TagTip(tag));
    Describe();
}

void Lamp::Describe() {
    setAccessibleName(caption_ + (tag_.isEmpty() ? tag_ : ", " + tag_) +
                      (picture_ == LampPicture::Bit1 ? ": on" : ": off") + (stale_ ? ", stale" : ""));
    update();
}

QSize Lamp::sizeHint() const {
    const int side = LampSide(fontMetrics());
    return {side, side};
}

void Lamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    DrawLamp(painter, rect(), picture_, palette(), stale_);
}

} // namespace kavro
