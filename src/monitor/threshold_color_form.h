#pragma once

#include "monitor/thresholds.h"

#include <QColor>
#include <QPalette>

namespace kavro {

/// The colour of a value on this side of its thresholds, easy to read on the background of `palette`, light
/// or dark; that of any text for a value within.
QColor ThresholdColor(Side side, const QPalette& palette);

} // namespace kavro
