#include "app/dark_outline_style.h"

#include "ui/readable_color.h"

#include <QPainter>
#include <QStyleOption>

namespace kavro {

namespace {

constexpr int DarkBelow = 128; // lightness of the window
constexpr double Rounding = 2;
constexpr float DisabledShare = 0.4F;
constexpr float HandleShare = 0.35F;

bool IsDark(const QStyleOption& option) {
    return option.palette.color(QPalette::Window).lightness() < DarkBelow;
}

QColor Outline(const QStyleOption& option) {
    const QColor window = option.palette.color(QPalette::Window);
    QColor outline = Readable(window, window);
    if (!option.state.testFlag(QStyle::State_Enabled))
        outline.setAlphaF(DisabledShare);
    return outline;
}

void DrawOutline(QPainter& painter, const QStyleOption& option, const QRect& rect, bool round) {
    const QRectF line = QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Outline(option));
    if (round)
        painter.drawEllipse(line);
    else
        painter.drawRoundedRect(line, Rounding, Rounding);
}

} // namespace

void DarkOutlineStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                     const QWidget* widget) const {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool round = element == PE_IndicatorRadioButton;
    if ((!round && element != PE_IndicatorCheckBox) || !IsDark(*option))
        return;
    painter->save();
    painter->setBrush(Qt::NoBrush);
    DrawOutline(*painter, *option, option->rect, round);
    painter->restore();
}

void DarkOutlineStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                          QPainter* painter, const QWidget* widget) const {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    const bool scrollBar = control == CC_ScrollBar;
    if ((!scrollBar && control != CC_Slider) || !IsDark(*option))
        return;
    const SubControl handle = scrollBar ? SC_ScrollBarSlider : SC_SliderHandle;
    QColor fill = Outline(*option);
    fill.setAlphaF(fill.alphaF() * HandleShare);
    painter->save();
    painter->setBrush(fill);
    DrawOutline(*painter, *option, subControlRect(control, option, handle, widget), false);
    painter->restore();
}

} // namespace kavro
