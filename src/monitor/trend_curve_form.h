#pragma once

#include "monitor/trend_scene_form.h"

#include <QPen>

class QPainter;

namespace kavro {

/// How many points all lines together may have for their curves to be smoothed.
inline constexpr std::size_t SmoothPoints = 6000;

/// How many points a line has as it is drawn smooth, at most.
std::size_t CurvePoints(const std::vector<TrendColumn>& columns);

/// Draws the curve of a line in its pane, as if each reading of it were drawn: smooth, or in whole pixels
/// of the screen, which is many times as fast.
void DrawCurve(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
               const QPen& pen, bool smooth);

/// Draws the markers that a line is known by, which move with it.
void DrawCurveMarkers(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
                      const QPalette& palette);

} // namespace kavro
