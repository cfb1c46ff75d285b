#pragma once

#include <QProxyStyle>

namespace kavro {

/// The Fusion style, which in dark colours hardly tells its option buttons, tick boxes and slider handles
/// from the window; here they get an outline.
class DarkOutlineStyle : public QProxyStyle {
public:
    DarkOutlineStyle() : QProxyStyle("Fusion") {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget = nullptr) const override;
};

} // namespace kavro
