#pragma once

#include "monitor/trend_scene_form.h"

#include <QPalette>

class QPainter;

namespace kavro {

/// Draws a scene on the background that is there, with texts in the painter's font.
void PaintTrend(QPainter& painter, const TrendScene& scene, const QPalette& palette,
                const std::string& separator);

/// Says something in the top right corner of the first plot.
void PaintTrendNote(QPainter& painter, const TrendScene& scene, const QPalette& palette, const QString& text);

/// Draws a cursor at that moment, and in a box beside it `time` and what each line was.
void PaintTrendCursor(QPainter& painter, const TrendScene& scene, const QPalette& palette, std::int64_t atMs,
                      const QString& time, const std::string& separator);

/// What a line was at a moment: "5.31 V", "5.2 .. 5.4 V" where several readings share a column of pixels, or
/// "-" where nothing is known.
QString TrendReading(const TrendScene& scene, std::size_t line, std::int64_t atMs,
                     const std::string& separator);

} // namespace kavro
