#include "monitor/trend_paint_form.h"

#include "monitor/time_marks.h"
#include "monitor/trend_curve_form.h"
#include "monitor/trend_style_form.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr const char* WidestTime = "2000-00-00";
constexpr int FaintAlpha = 45;
constexpr double OutsideWidth = 3.2; // of a curve beyond a threshold

QColor Faint(const QPalette& palette) {
    QColor color = palette.color(QPalette::Text);
    color.setAlpha(FaintAlpha);
    return color;
}

void PaintLegend(QPainter& painter, const TrendScene& scene, const TrendPane& pane, const QPalette& palette) {
    const QFont font = painter.font();
    const QFontMetricsF metrics(font);
    LegendFlow flow(pane.Legend, metrics.lineSpacing());
    QFont bold = font;
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawText(flow.Place(QFontMetricsF(bold).horizontalAdvance(pane.Unit)) +
                         QPointF(0, metrics.ascent()),
                     pane.Unit);
    painter.setFont(font);
    for (const std::size_t line : pane.Lines) {
        const auto& [name, style] = std::pair(scene.Lines[line].Name, scene.Lines[line].Style);
        const QPointF place = flow.Place(TrendSampleWidth + TrendGap + metrics.horizontalAdvance(name));
        if (place.y() + metrics.height() > pane.Legend.bottom() + metrics.lineSpacing() / 2)
            return; // there is no room for more names than plots
        DrawTrendSample(painter, place + QPointF(0, metrics.height() / 2), style, palette);
        painter.setPen(palette.color(QPalette::Text));
        painter.drawText(place + QPointF(TrendSampleWidth + TrendGap, metrics.ascent()),
                         metrics.elidedText(name, Qt::ElideRight,
                                            pane.Legend.right() - place.x() - TrendSampleWidth - TrendGap));
    }
}

void PaintAxes(QPainter& painter, const TrendScene& scene, const TrendPane& pane, const QPalette& palette,
               const std::string& separator, const std::vector<TimeMark>& times) {
    const QFontMetricsF metrics(painter.font());
    const QRectF& plot = pane.Plot;
    for (const double mark : pane.Axis.Marks) {
        const double y = pane.PlaceOf(mark);
        painter.setPen(Faint(palette));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        painter.setPen(palette.color(QPalette::Text));
        const QString text = TickText(pane, mark, separator);
        painter.drawText(
            QPointF(plot.left() - TrendGap - metrics.horizontalAdvance(text), y + metrics.capHeight() / 2),
            text);
    }
    painter.setPen(Faint(palette));
    for (const TimeMark& time : times) {
        const double x = scene.Time.PlaceOf(time.AtMs);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    painter.setPen(palette.color(QPalette::Text));
    painter.drawLine(plot.topLeft(), plot.bottomLeft());
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
}

void PaintTimes(QPainter& painter, const TrendScene& scene, const QPalette& palette,
                const std::vector<TimeMark>& times) {
    const QFontMetricsF metrics(painter.font());
    const QRectF& plot = scene.Panes.back().Plot;
    const double right = plot.right() + TrendMargin;
    painter.setPen(palette.color(QPalette::Text));
    for (const TimeMark& time : times) {
        double y = plot.bottom() + TrendGap + metrics.ascent();
        for (const std::string& line : {time.Text, time.Date}) {
            const QString text = QString::fromStdString(line);
            const double width = metrics.horizontalAdvance(text);
            const double x = scene.Time.PlaceOf(time.AtMs) - width / 2;
            painter.drawText(QPointF(std::max(std::min(x, right - width), 2.0), y), text);
            y += metrics.height();
        }
    }
}

// The curve beyond a threshold once more, thicker and in another colour.
void PaintOutside(QPainter& painter, const TrendScene& scene, const TrendPane& pane, std::size_t number,
                  const QPalette& palette, bool smooth) {
    const kavro::Thresholds& limits = scene.Lines[number].Thresholds;
    const QRectF all = pane.Plot.adjusted(0, -TrendGap, 0, TrendGap);
    const auto paint = [&](double top, double bottom) {
        painter.setClipRect(QRectF(QPointF(all.left(), std::clamp(top, all.top(), all.bottom())),
                                   QPointF(all.right(), std::clamp(bottom, all.top(), all.bottom()))));
        DrawCurve(painter, scene, pane, number, QPen(TrendWarning(palette), OutsideWidth), smooth);
        painter.setClipping(false);
    };
    if (limits.High)
        paint(all.top(), pane.PlaceOf(*limits.High));
    if (limits.Low)
        paint(pane.PlaceOf(*limits.Low), all.bottom());
}

// A dashed line in the colour of the curve, with what it is.
void PaintThresholds(QPainter& painter, const TrendPane& pane, const TrendLine& line, const QPalette& palette,
                     const std::string& separator) {
    const QFontMetricsF metrics(painter.font());
    const QRectF& plot = pane.Plot;
    for (const auto& [limit, name, above] :
         {std::tuple(line.Thresholds.High, "high ", true), std::tuple(line.Thresholds.Low, "low ", false)}) {
        const double y = limit ? pane.PlaceOf(*limit) : plot.top() - 1;
        if (y < plot.top() || y > plot.bottom())
            continue;
        painter.setPen(QPen(TrendPen(line.Style, palette).color(), 1, Qt::DashLine));
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        const QString text = name + TrendValueText(*limit, line.Word, separator);
        QRectF label(plot.left() + TrendGap, above ? y - metrics.height() - 1 : y + 1,
                     metrics.horizontalAdvance(text), metrics.height());
        label.moveTop(std::clamp(label.top(), plot.top(), plot.bottom() - metrics.height()));
        painter.fillRect(label, palette.color(QPalette::Base));
        painter.drawText(label, Qt::AlignCenter, text);
    }
}

} // namespace

void PaintTrend(QPainter& painter, const TrendScene& scene, const QPalette& palette,
                const std::string& separator) {
    if (scene.Panes.empty())
        return;
    painter.setRenderHint(QPainter::Antialiasing);
    std::size_t points = 0;
    for (const auto& columns : scene.Columns)
        points += CurvePoints(columns);
    const bool smooth = points <= SmoothPoints;
    const double room = QFontMetricsF(painter.font()).horizontalAdvance(WidestTime) + TrendEntryGap;
    const auto times = TimeMarks(scene.Time.Shown.FromMs, scene.Time.Shown.ToMs,
                                 static_cast<std::int64_t>(room * scene.Time.MsPerPixel));
    for (const TrendPane& pane : scene.Panes) {
        PaintLegend(painter, scene, pane, palette);
        PaintAxes(painter, scene, pane, palette, separator, times);
        for (const std::size_t line : pane.Lines) {
            painter.setClipRect(pane.Plot.adjusted(0, -TrendGap, 0, TrendGap));
            DrawCurve(painter, scene, pane, line, TrendPen(scene.Lines[line].Style, palette), smooth);
            PaintOutside(painter, scene, pane, line, palette, smooth);
            painter.setClipRect(pane.Plot.adjusted(-TrendGap, -TrendGap, TrendGap, TrendGap));
            DrawCurveMarkers(painter, scene, pane, line, palette);
            painter.setClipping(false);
        }
        for (const std::size_t line : pane.Lines)
            PaintThresholds(painter, pane, scene.Lines[line], palette, separator);
    }
    PaintTimes(painter, scene, palette, times);
}

void PaintTrendNote(QPainter& painter, const TrendScene& scene, const QPalette& palette,
                    const QString& text) {
    if (scene.Panes.empty() || text.isEmpty())
        return;
    const QFontMetricsF metrics(painter.font());
    const QRectF& plot = scene.Panes.front().Plot;
    const QString shown = metrics.elidedText(text, Qt::ElideRight, plot.width() - 2 * TrendGap);
    const double width = metrics.horizontalAdvance(shown) + 2 * TrendGap;
    const QRectF box(plot.right() - width, plot.top(), width, metrics.height() + TrendGap);
    painter.setPen(palette.color(QPalette::ToolTipText));
    painter.setBrush(palette.color(QPalette::ToolTipBase));
    painter.drawRect(box);
    painter.drawText(box, Qt::AlignCenter, shown);
}

QString TrendReading(const TrendScene& scene, std::size_t line, std::int64_t atMs,
                     const std::string& separator) {
    const auto column = ColumnNear(scene, line, atMs);
    if (!column)
        return "-";
    const auto text = [&](double value) { return TrendValueText(value, scene.Lines[line].Word, separator); };
    const QString values = column->Least == column->Most ? text(column->Last)
                                                         : text(column->Least) + " .. " + text(column->Most);
    return scene.Lines[line].Word ? values : (values + " " + scene.Lines[line].Unit).trimmed();
}

void PaintTrendCursor(QPainter& painter, const TrendScene& scene, const QPalette& palette, std::int64_t atMs,
                      const QString& time, const std::string& separator) {
    if (scene.Panes.empty())
        return;
    const QFontMetricsF metrics(painter.font());
    const QRectF plots(scene.Panes.front().Plot.topLeft(), scene.Panes.back().Plot.bottomRight());
    const double x = scene.Time.PlaceOf(atMs);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawLine(QPointF(x, plots.top()), QPointF(x, plots.bottom()));

    QStringList rows;
    double width = metrics.horizontalAdvance(time);
    const auto most =
        static_cast<std::size_t>(std::max((plots.height() - 2 * TrendGap) / metrics.lineSpacing() - 2, 1.0));
    const std::size_t count = std::min(scene.Lines.size(), most);
    for (std::size_t line = 0; line < count; ++line) {
        rows << TrendReading(scene, line, atMs, separator) + "  " + scene.Lines[line].Name;
        width = std::max(width, TrendSampleWidth + TrendGap + metrics.horizontalAdvance(rows.back()));
    }
    const qsizetype more = static_cast<qsizetype>(scene.Lines.size() - count);
    width = std::min(width, plots.width() - 2 * TrendGap);
    const double height = metrics.lineSpacing() * static_cast<double>(rows.size() + (more ? 2 : 1));
    QRectF box(x + TrendEntryGap, plots.top() + metrics.lineSpacing() + TrendGap, width + 2 * TrendGap,
               height + TrendGap);
    if (box.right() > plots.right())
        box.moveRight(x - TrendEntryGap);
    box.moveLeft(std::max(box.left(), plots.left()));
    painter.setBrush(palette.color(QPalette::Base));
    painter.drawRect(box);
    QPointF place = box.topLeft() + QPointF(TrendGap, TrendGap / 2 + metrics.ascent());
    const auto write = [&](const QString& text, double indent) {
        painter.setPen(palette.color(QPalette::Text));
        painter.drawText(place + QPointF(indent, 0),
                         metrics.elidedText(text, Qt::ElideRight, width - indent));
        place += {0, metrics.lineSpacing()};
    };
    write(time, 0);
    for (std::size_t line = 0; line < count; ++line) {
        DrawTrendSample(painter, place - QPointF(0, metrics.capHeight() / 2), scene.Lines[line].Style,
                        palette);
        write(rows[static_cast<qsizetype>(line)], TrendSampleWidth + TrendGap);
    }
    if (more)
        write(QString("and %1 more").arg(more), 0);
}

} // namespace kavro
