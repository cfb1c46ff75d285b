#include "monitor/trend_style_form.h"

#include <QPainter>
#include <QStyleOptionViewItem>

#include <array>

namespace kavro {

namespace {

constexpr double LineWidth = 1.8;
constexpr double BoxRounding = 2;
constexpr double TickShare = 0.32; // radius of the marker in a tick box, of the box's width
constexpr float SoftShare = 0.65F; // of the text colour, the rest is background
constexpr int DarkBelow = 128;     // lightness of the background

// The same hues in both rows; neighbours differ in lightness too, so that they differ for every kind of eye.
constexpr std::size_t Colors = 8;
constexpr std::array<QRgb, Colors> OnLight = {0x0060A8, 0xD55E00, 0x00805C, 0xA8438C,
                                              0x7A6200, 0x2E8BC8, 0x8C2D04, 0x555555};
constexpr std::array<QRgb, Colors> OnDark = {0x6DB6F0, 0xF0A030, 0x2CC79C, 0xE79CC8,
                                             0xF0E442, 0xA9D8F5, 0xFF7F5C, 0xD0D0D0};

constexpr QRgb WarningOnLight = 0xC00000;
constexpr QRgb WarningOnDark = 0xFF5050;

using Polygon = std::array<QPointF, 4>;
constexpr Polygon Square = {QPointF{-0.85, -0.85}, {0.85, -0.85}, {0.85, 0.85}, {-0.85, 0.85}};
constexpr Polygon Triangle = {QPointF{0, -1.1}, {1.05, 0.8}, {-1.05, 0.8}, {0, -1.1}};
constexpr Polygon Diamond = {QPointF{0, -1.2}, {1.2, 0}, {0, 1.2}, {-1.2, 0}};
constexpr Polygon TriangleDown = {QPointF{0, 1.1}, {1.05, -0.8}, {-1.05, -0.8}, {0, 1.1}};
constexpr std::array<Polygon, 4> Polygons = {Square, Triangle, Diamond, TriangleDown};

bool IsDark(const QPalette& palette) {
    return palette.color(QPalette::Base).lightness() < DarkBelow;
}

} // namespace

QColor SoftText(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Active, QPalette::Text);
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const auto mix = [](float ink, float ground) { return ground + SoftShare * (ink - ground); };
    return QColor::fromRgbF(mix(text.redF(), base.redF()), mix(text.greenF(), base.greenF()),
                            mix(text.blueF(), base.blueF()));
}

QColor TrendWarning(const QPalette& palette) {
    return {IsDark(palette) ? WarningOnDark : WarningOnLight};
}

QPen TrendPen(int style, const QPalette& palette) {
    const auto number = static_cast<std::size_t>(style);
    const bool dark = IsDark(palette);
    // The pattern changes with the colour's second turn only, so that few lines are solid ones.
    constexpr std::array<Qt::PenStyle, 4> patterns = {Qt::SolidLine, Qt::DashLine, Qt::DotLine,
                                                      Qt::DashDotLine};
    QPen pen(QColor((dark ? OnDark : OnLight)[number % Colors]), LineWidth);
    pen.setStyle(patterns[number / 2 % patterns.size()]);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

void DrawTrendMarker(QPainter& painter, QPointF center, int style, const QPalette& palette, double radius) {
    const auto number = static_cast<std::size_t>(style) % (Polygons.size() + 1);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(TrendPen(style, palette).color());
    painter.translate(center);
    painter.scale(radius, radius);
    if (number == 0)
        painter.drawEllipse(QPointF(), 1, 1);
    else
        painter.drawPolygon(Polygons[number - 1].data(), static_cast<int>(Polygons[number - 1].size()));
    painter.restore();
}

void DrawTrendSample(QPainter& painter, QPointF left, int style, const QPalette& palette) {
    painter.setPen(TrendPen(style, palette));
    painter.drawLine(left, left + QPointF(TrendSampleWidth, 0));
    DrawTrendMarker(painter, left + QPointF(TrendSampleWidth / 2.0, 0), style, palette);
}

void TickBoxStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
    if (element != PE_IndicatorItemViewItemCheck || !item) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    const QRectF box = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(SoftText(option->palette));
    painter->setBrush(option->palette.color(QPalette::Base));
    painter->drawRoundedRect(box, BoxRounding, BoxRounding);
    if (option->state.testFlag(State_On))
        DrawTrendMarker(*painter, box.center(), item->index.data(TrendStyleRole).toInt(), option->palette,
                        box.width() * TickShare);
    painter->restore();
}

} // namespace kavro
