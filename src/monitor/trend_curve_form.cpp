#include "monitor/trend_curve_form.h"

#include "monitor/trend_style_form.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <array>
#include <cmath>

namespace kavro {

namespace {

constexpr int MarkerSpacing = 70; // pixels between two markers of a line
constexpr int ManyLines = 20;     // of which each has fewer markers
constexpr double FarOff = 1e6;    // pixels
constexpr qsizetype PiecePoints = 4;
constexpr int WideColumn = 4; // pixels of the screen from which on a column has corners that can be seen

struct CurvePlace {
    const TrendScene& Scene;
    const TrendPane& Pane;

    QPointF At(std::int64_t atMs, double value) const {
        return {Scene.Time.PlaceOf(atMs), Pane.PlaceOf(value)};
    }
};

// First, least and most, last: nobody knows whether the least or the most came first.
void AddColumn(QPolygonF& points, const CurvePlace& place, const TrendColumn& column) {
    const std::int64_t middle = column.FirstMs + (column.LastMs - column.FirstMs) / 2;
    points << place.At(column.FirstMs, column.First);
    if (column.FirstMs == column.LastMs)
        return;
    if (column.Least < std::min(column.First, column.Last))
        points << place.At(middle, column.Least);
    if (column.Most > std::max(column.First, column.Last))
        points << place.At(middle, column.Most);
    points << place.At(column.LastMs, column.Last);
}

// In short pieces, as the time that Qt takes for a long one grows with the square of its length.
void DrawPiece(QPainter& painter, const QPolygonF& points) {
    QPen pen = painter.pen();
    for (qsizetype first = 0; first + 1 < points.size(); first += PiecePoints) {
        const auto count = static_cast<int>(std::min(PiecePoints + 1, points.size() - first));
        painter.drawPolyline(points.constData() + first, count);
        if (pen.style() == Qt::SolidLine)
            continue;
        for (qsizetype number = first + 1; number < first + count; ++number) // the dashes go on
            pen.setDashOffset(pen.dashOffset() +
                              QLineF(points[number - 1], points[number]).length() / pen.widthF());
        painter.setPen(pen);
    }
}

void DrawSmooth(QPainter& painter, const CurvePlace& place, const std::vector<TrendColumn>& columns) {
    const QPen pen = painter.pen();
    QPolygonF points;
    for (const TrendColumn& column : columns) {
        AddColumn(points, place, column);
        if (column.Broken) {
            DrawPiece(painter, points);
            painter.setPen(pen);
            points.clear();
        }
    }
    DrawPiece(painter, points);
}

/// A curve in whole pixels of the screen: upright rectangles where it is dense, lines where it is not.
class PixelCurve {
public:
    PixelCurve(const CurvePlace& place, double ratio, int thickness)
        : place_(place), ratio_(ratio), thickness_(thickness), perMs_(ratio / place.Scene.Time.MsPerPixel),
          fromMs_(place.Scene.Time.FromMs - place.Scene.Time.Left * place.Scene.Time.MsPerPixel),
          perUnit_(place.Pane.Plot.height() * ratio / (place.Pane.Axis.High - place.Pane.Axis.Low)),
          high_(place.Pane.Axis.High), top_(static_cast<int>(place.Pane.Plot.top() * ratio)) {}

    void Add(const TrendColumn& column) {
        const QPoint first(Column(column.FirstMs), Row(column.First));
        const QPoint last(Column(column.LastMs), Row(column.Last));
        const bool near = joined_ && first.x() - last_.x() < WideColumn;
        if (joined_ && !near)
            lines_ << QLine(last_, first);
        if (last.x() - first.x() >= WideColumn)
            AddWide(column, near ? last_ : first);
        else
            AddUpright(column, first.x(), last.x(), near ? last_.y() : first.y());
        last_ = last;
        joined_ = !column.Broken;
    }

    void Draw(QPainter& painter, const QColor& color) const {
        painter.save();
        painter.scale(1 / ratio_, 1 / ratio_);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setPen(QPen(color, thickness_));
        painter.drawLines(lines_);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRects(uprights_);
        painter.restore();
    }

private:
    int Column(std::int64_t atMs) const {
        return static_cast<int>((static_cast<double>(atMs) - fromMs_) * perMs_);
    }
    int Row(double value) const {
        return static_cast<int>(std::clamp((high_ - value) * perUnit_, -FarOff, FarOff)) + top_;
    }

    // Tall enough to meet what came before it.
    void AddUpright(const TrendColumn& column, int left, int right, int from) {
        const int top = std::min(Row(column.Most), from);
        const int bottom = std::max(Row(column.Least), from);
        uprights_ << QRect(left, top - thickness_ / 2, std::max(right - left + 1, thickness_),
                           bottom - top + thickness_);
    }

    void AddWide(const TrendColumn& column, QPoint from) {
        QPolygonF points;
        AddColumn(points, place_, column);
        for (const QPointF& point : points) {
            const QPoint to = (point * ratio_).toPoint();
            lines_ << QLine(from, to);
            from = to;
        }
    }

    const CurvePlace& place_;
    double ratio_;
    int thickness_;
    double perMs_, fromMs_; // pixels of the screen a ms, and the moment at its left edge
    double perUnit_, high_; // pixels a unit, and the value at the top of the plot
    int top_;
    bool joined_ = false;
    QPoint last_;
    QList<QRect> uprights_;
    QList<QLine> lines_;
};

} // namespace

std::size_t CurvePoints(const std::vector<TrendColumn>& columns) {
    constexpr std::size_t corners = 4;
    std::size_t points = 0;
    for (const TrendColumn& column : columns)
        points += column.FirstMs == column.LastMs ? 1 : corners;
    return points;
}

void DrawCurve(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
               const QPen& pen, bool smooth) {
    const CurvePlace place{scene, pane};
    if (smooth) {
        painter.setPen(pen);
        DrawSmooth(painter, place, scene.Columns[line]);
        return;
    }
    PixelCurve curve(place, scene.PixelRatio,
                     std::max(static_cast<int>(std::lround(pen.widthF() * scene.PixelRatio)), 1));
    for (const TrendColumn& column : scene.Columns[line])
        curve.Add(column);
    curve.Draw(painter, pen.color());
}

void DrawCurveMarkers(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t line,
                      const QPalette& palette) {
    const int style = scene.Lines[line].Style;
    const double spacing =
        MarkerSpacing * (1.0 + std::floor(static_cast<double>(scene.Lines.size()) / ManyLines));
    const double phase = style % 5 * spacing / 5.0; // markers of two lines rarely meet
    bool joined = false;
    double lastSlot = 0;
    for (const TrendColumn& column : scene.Columns[line]) {
        const double slot =
            std::floor((static_cast<double>(column.FirstMs) / scene.Time.MsPerPixel + phase) / spacing);
        if (slot != lastSlot || !joined)
            DrawTrendMarker(painter, {scene.Time.PlaceOf(column.FirstMs), pane.PlaceOf(column.First)}, style,
                            palette);
        lastSlot = slot;
        joined = !column.Broken;
    }
}

} // namespace kavro
