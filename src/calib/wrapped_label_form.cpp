#include "calib/wrapped_label_form.h"

#include "ui/named.h"

#include <QLabel>

namespace kavro {

QLabel* WrappedLabel(const char* name, int columns, int lines, QWidget& form) {
    auto* label = Named(new QLabel(&form), name, {}); // owned at once, as a guide may fail to load
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const QFontMetrics metrics = label->fontMetrics();
    label->setMinimumSize(metrics.averageCharWidth() * columns, metrics.lineSpacing() * lines);
    return label;
}

} // namespace kavro
