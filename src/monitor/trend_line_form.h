#pragma once

#include "map/monitor_preferences.h"

#include <QString>

#include <cstddef>

namespace kavro {

/// One line of a trend view.
struct TrendLine {
    QString Name;      ///< in the legend
    QString Unit;      ///< lines of one unit share a pane and its axis; may be empty
    bool Word = false; ///< a digital word, whose axis is labelled in hexadecimal
    int Style = 0;     ///< of colour, pattern and marker
    ValueKey Key;      ///< in a history
    int Index = 0;     ///< entry of the map, in the trend
    std::size_t Place = 0;
    kavro::Thresholds Thresholds;
};

} // namespace kavro
