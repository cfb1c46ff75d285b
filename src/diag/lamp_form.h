#pragma once

#include "map/module_tags.h"

#include <QFontMetrics>
#include <QPalette>
#include <QWidget>

class QPainter;

namespace kavro {

/// The pictures of a digital state: `Bit0` an empty ring with "0", `Bit1` a full square with "1", so that
/// they differ without their colour too.
enum class LampPicture { Bit0, Bit1 };

/// Draws a lamp to fill the square `place`; a stale one without its colour, with a dotted edge.
void DrawLamp(QPainter& painter, const QRectF& place, LampPicture picture, const QPalette& palette,
              bool stale = false);

/// Side of a lamp next to text in this font, in pixels.
int LampSide(const QFontMetrics& font);

/// Shows a digital state; "Input 3: on" to a screen reader when its caption is "Input 3".
class Lamp : public QWidget {
public:
    /// `Bit0` at first.
    Lamp(const QString& name, const QString& caption);

    void Show(LampPicture picture);
    LampPicture Shown() const { return picture_; }
    /// Whether what is shown is no longer up to date.
    void SetStale(bool stale);
    /// Speaks of it with its tag, which its tooltip has too.
    void ShowTag(const TagAndNote& tag);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void Describe();

    QString caption_;
    QString tag_;
    LampPicture picture_ = LampPicture::Bit0;
    bool stale_ = false;
};

} // namespace kavro
