#pragma once

#include "monitor/axis_ticks.h"
#include "monitor/trend_line_form.h"
#include "monitor/trend_past_form.h"

#include <QFont>
#include <QRectF>
#include <QSizeF>

#include <optional>
#include <string>
#include <vector>

namespace kavro {

inline constexpr double TrendMargin = 10;
inline constexpr double TrendGap = 6; ///< between a text and what it belongs to
inline constexpr double TrendEntryGap = 16;

/// The lines of one unit: a legend above a plot with a scaled axis. Places are in pixels of the view.
struct TrendPane {
    QString Unit;
    bool Word = false;
    std::vector<std::size_t> Lines{}; ///< numbers in the scene
    AxisTicks Axis{};
    QRectF Legend{}, Plot{};

    /// How far down a value stands.
    double PlaceOf(double value) const {
        return Plot.bottom() - (value - Axis.Low) / (Axis.High - Axis.Low) * Plot.height();
    }
};

/// Where moments stand. The left edge is at a whole number of pixels of the screen since 1970, so that curves
/// move by whole pixels as time goes on, and look alike after each step.
struct TrendTimeAxis {
    double FromMs = 0;
    double MsPerPixel = 1; ///< of the view
    double Left = 0;
    TrendStretch Shown;

    double PlaceOf(std::int64_t atMs) const {
        return Left + (static_cast<double>(atMs) - FromMs) / MsPerPixel;
    }
    std::int64_t MomentAt(double x) const {
        return static_cast<std::int64_t>(FromMs + (x - Left) * MsPerPixel);
    }
};

/// What a trend view shows, and where.
struct TrendScene {
    std::vector<TrendLine> Lines{};
    std::vector<std::vector<TrendColumn>> Columns{}; ///< of each line
    std::vector<TrendPane> Panes{};
    TrendTimeAxis Time{};
    double PixelRatio = 1; ///< pixels of the screen in one of the view
};

/// How a scene is to be made.
struct TrendFrame {
    QSizeF Size;
    double PixelRatio = 1;
    QFont Font;
    std::int64_t FromMs = 0, ToMs = 0;
    std::string Separator; ///< the user's decimal separator
};

/// Lays out what the lines were in that time.
TrendScene MakeTrendScene(const std::vector<TrendLine>& lines, const TrendPast& past,
                          const TrendFrame& frame);

/// The text at a mark of a pane's axis.
QString TickText(const TrendPane& pane, double mark, const std::string& separator);

/// A value as text without its unit, in hexadecimal for a digital word.
QString TrendValueText(double value, bool word, const std::string& separator);

/// The column of a line that a moment reads: the one around it or the nearest, unless the line is broken
/// there.
std::optional<TrendColumn> ColumnNear(const TrendScene& scene, std::size_t line, std::int64_t atMs);

/// Where the entries of a legend stand: on as many lines as the width needs.
class LegendFlow {
public:
    LegendFlow(const QRectF& room, double lineHeight)
        : room_(room), lineHeight_(lineHeight), next_(room.topLeft()) {}

    /// The left top of an entry of that width.
    QPointF Place(double width);

    double Height() const { return next_.y() + lineHeight_ - room_.top(); }

private:
    QRectF room_;
    double lineHeight_;
    QPointF next_;
};

} // namespace kavro
