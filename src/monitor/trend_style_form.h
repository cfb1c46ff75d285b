#pragma once

#include <QPalette>
#include <QPen>
#include <QPointF>
#include <QProxyStyle>

namespace kavro {

/// A colour between the text of `palette` and its background, still easy to read.
QColor SoftText(const QPalette& palette);

/// How trend line number `style` (0 and up) is drawn on the background of `palette`: a colour that stands out
/// on light and on dark and that colour-blind eyes tell apart, and a dash pattern of its own.
QPen TrendPen(int style, const QPalette& palette);

/// The colour of what is beyond a threshold.
QColor TrendWarning(const QPalette& palette);

/// Radius of the markers on a line, in pixels.
inline constexpr double TrendMarkerRadius = 3.6;

/// Draws the marker of trend line number `style` around `center`, in the colour of its pen.
void DrawTrendMarker(QPainter& painter, QPointF center, int style, const QPalette& palette,
                     double radius = TrendMarkerRadius);

/// Width of a sample of a line, in pixels.
inline constexpr int TrendSampleWidth = 26;

/// Draws a piece of line with its marker in the middle, from `left` on.
void DrawTrendSample(QPainter& painter, QPointF left, int style, const QPalette& palette);

/// The style of a view whose items are ticked for the trend: the box of a ticked item shows the marker of the
/// line whose number stands in the item's `TrendStyleRole`.
class TickBoxStyle : public QProxyStyle {
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
};

inline constexpr int TrendStyleRole = Qt::UserRole;

} // namespace kavro
