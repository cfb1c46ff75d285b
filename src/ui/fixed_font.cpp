#include "ui/fixed_font.h"

#include <QApplication>
#include <QFont>

namespace kavro {

QFont FixedFont() {
    QFont font("Courier New");
    font.setStyleHint(QFont::Monospace); // what stands in where there is no Courier New
    font.setFixedPitch(true);
    font.setPointSizeF(QApplication::font().pointSizeF());
    return font;
}

} // namespace kavro
