#include "loop/big_label_form.h"

#include <QFontMetrics>
#include <QResizeEvent>

namespace kavro {

namespace {

constexpr int FarPoints = 48, LeastPoints = 20, MostPoints = 200;
constexpr int FarCharacters = 11; // that always fit in one line at the size for two metres

QFont WithPoints(QFont font, int points) {
    font.setPointSize(points);
    font.setBold(true);
    return font;
}

} // namespace

BigLabel::BigLabel() {
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    setFont(WithPoints(font(), FarPoints));
}

void BigLabel::Show(const QString& text) {
    if (text == this->text())
        return;
    setText(text);
    Fit();
}

// Of the size for two metres, whatever is shown now: the window does not jump with its texts.
QSize BigLabel::minimumSizeHint() const {
    const QFontMetrics metrics(WithPoints(font(), FarPoints));
    return {metrics.horizontalAdvance(QString(FarCharacters, '0')), metrics.height()};
}

QSize BigLabel::sizeHint() const {
    const QSize least = minimumSizeHint();
    return {least.width() * 3 / 2, least.height() * 2}; // names without a tag have two lines
}

void BigLabel::resizeEvent(QResizeEvent* event) {
    TintedLabel::resizeEvent(event);
    Fit();
}

bool BigLabel::Fits(int points) const {
    const QFontMetrics metrics(WithPoints(font(), points));
    const QRect needed = metrics.boundingRect(contentsRect(), Qt::AlignCenter | Qt::TextWordWrap, text());
    return needed.width() <= contentsRect().width() && needed.height() <= contentsRect().height();
}

void BigLabel::Fit() {
    int fits = LeastPoints, over = MostPoints + 1;
    while (over - fits > 1) {
        const int middle = (fits + over) / 2;
        (Fits(middle) ? fits : over) = middle;
    }
    if (font().pointSize() != fits)
        setFont(WithPoints(font(), fits));
}

} // namespace kavro
