#pragma once

#include <QColor>

namespace kavro {

/// How far apart two colours are in lightness, 1 (the same) to 21 (black and white).
double ContrastRatio(const QColor& first, const QColor& second);

/// `color` as it is on a light background; on a dark one made lighter, only as far as text in it needs to be
/// easy to read there.
QColor Readable(const QColor& color, const QColor& background);

} // namespace kavro
