#pragma once

#include "monitor/trend_scene_form.h"

#include <QPen>

class QPainter;

namespace kavro {

/// How much there is to draw of all lines together: beyond this curves are not smoothed.
inline constexpr std::size_t SmoothColumns = 3000;

/// Draws the curve of a line in its pane, as if each reading of it were drawn: smooth, or in whole pixels
/// of the screen, which is many times as fast.
void DrawCurve(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
               const QPen& pen, bool smooth);

/// Draws the markers that a line is known by, which move with it.
void DrawCurveMarkers(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
                      const QPalette& palette);

} // namespace kavro
