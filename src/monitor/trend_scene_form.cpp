#include "monitor/trend_scene_form.h"

#include "link/text.h"
#include "monitor/trend_style_form.h"
#include "monitor/trend_window.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double LinesPerStep = 1.8; // text lines that a step of an axis is high at least
constexpr int MostSteps = 8;
constexpr double LeastPlot = 20;
constexpr double LegendShare = 0.4; // of the height, at most
constexpr int TimeRows = 2;
constexpr double NearPixels = 8; // how far from a line's end its value is still read

std::vector<TrendPane> PanesOf(const std::vector<TrendLine>& lines) {
    std::vector<TrendPane> panes;
    for (std::size_t number = 0; number < lines.size(); ++number) {
        auto pane = std::ranges::find(panes, lines[number].Unit, &TrendPane::Unit);
        if (pane == panes.end())
            pane = panes.insert(pane, TrendPane{.Unit = lines[number].Unit, .Word = lines[number].Word});
        pane->Lines.push_back(number);
    }
    return panes;
}

double LegendHeight(const TrendPane& pane, const TrendScene& scene, const TrendFrame& frame, double width) {
    const QFontMetricsF metrics(frame.Font);
    QFont bold = frame.Font;
    bold.setBold(true);
    LegendFlow flow({0, 0, width, 0}, metrics.lineSpacing());
    flow.Place(QFontMetricsF(bold).horizontalAdvance(pane.Unit));
    for (const std::size_t line : pane.Lines)
        flow.Place(TrendSampleWidth + TrendGap + metrics.horizontalAdvance(scene.Lines[line].Name));
    const double most = LegendShare * frame.Size.height() / static_cast<double>(scene.Panes.size());
    return std::max(std::min(flow.Height(), std::floor(most / metrics.lineSpacing()) * metrics.lineSpacing()),
                    metrics.lineSpacing());
}

// Over what is in sight.
void ScaleAxis(TrendPane& pane, const TrendScene& scene, double steps) {
    std::optional<double> low, high;
    const TrendStretch& shown = scene.Time.Shown;
    for (const std::size_t line : pane.Lines)
        for (const TrendColumn& column : scene.Columns[line])
            if (column.LastMs >= shown.FromMs && column.FirstMs <= shown.ToMs) {
                low = std::min(low.value_or(column.Least), column.Least);
                high = std::max(high.value_or(column.Most), column.Most);
            }
    pane.Axis = RoundTicks(low.value_or(0), high.value_or(1), std::min(static_cast<int>(steps), MostSteps),
                           pane.Word);
}

void FitTime(TrendTimeAxis& time, const TrendFrame& frame, double left, double width) {
    const double step =
        static_cast<double>(frame.ToMs - frame.FromMs) / std::max(width * frame.PixelRatio, 1.0);
    time.Left = left;
    time.MsPerPixel = step * frame.PixelRatio;
    const double end = std::ceil(static_cast<double>(frame.ToMs) / step) * step;
    time.FromMs = end - time.MsPerPixel * width;
    time.Shown = {static_cast<std::int64_t>(time.FromMs), static_cast<std::int64_t>(end),
                  RoundColumnMs(step)};
}

// A little more than is shown, so that lines reach the edges.
void ReadColumns(TrendScene& scene, const TrendPast& past) {
    TrendStretch wide = scene.Time.Shown;
    const std::int64_t more =
        std::max(2 * wide.ColumnMs, std::min<std::int64_t>(wide.ToMs - wide.FromMs, 60'000));
    wide.FromMs -= more;
    wide.ToMs += more;
    scene.Columns.clear();
    for (const TrendLine& line : scene.Lines)
        scene.Columns.push_back(past.Columns(line, wide));
}

} // namespace

QPointF LegendFlow::Place(double width) {
    if (next_.x() > room_.left() && next_.x() + width > room_.right())
        next_ = {room_.left(), next_.y() + lineHeight_};
    const QPointF place = next_;
    next_ += {width + TrendEntryGap, 0};
    return place;
}

// The panes stand under each other at the same left edge, as they share the time. How wide the labels of the
// axes are decides on the columns, and these on the labels: the columns of the full width are close enough.
TrendScene MakeTrendScene(const std::vector<TrendLine>& lines, const TrendPast& past,
                          const TrendFrame& frame) {
    TrendScene scene{.Lines = lines, .Panes = PanesOf(lines), .PixelRatio = frame.PixelRatio};
    if (scene.Panes.empty())
        return scene;
    const QFontMetricsF metrics(frame.Font);
    const double width = frame.Size.width() - 2 * TrendMargin;
    FitTime(scene.Time, frame, TrendMargin, width);
    ReadColumns(scene, past);
    double legends = 0;
    for (TrendPane& pane : scene.Panes) {
        pane.Legend = {TrendMargin, 0, width, LegendHeight(pane, scene, frame, width)};
        legends += pane.Legend.height() + TrendGap;
    }
    const double room =
        frame.Size.height() - 2 * TrendMargin - TimeRows * metrics.height() - TrendGap - legends;
    const double plot = std::max(room / static_cast<double>(scene.Panes.size()) - TrendMargin, LeastPlot);
    double labels = 0;
    double top = TrendMargin;
    for (TrendPane& pane : scene.Panes) {
        ScaleAxis(pane, scene, plot / (LinesPerStep * metrics.height()));
        for (const double mark : pane.Axis.Marks)
            labels = std::max(labels, metrics.horizontalAdvance(TickText(pane, mark, frame.Separator)));
        pane.Legend.moveTop(top);
        top = pane.Legend.bottom() + TrendGap + plot + TrendMargin;
    }
    labels = std::ceil(labels) + TrendGap;
    for (TrendPane& pane : scene.Panes)
        pane.Plot = {TrendMargin + labels, pane.Legend.bottom() + TrendGap, width - labels - TrendGap, plot};
    const TrendStretch before = scene.Time.Shown;
    FitTime(scene.Time, frame, scene.Panes.front().Plot.left(), scene.Panes.front().Plot.width());
    if (before.ColumnMs != scene.Time.Shown.ColumnMs)
        ReadColumns(scene, past);
    return scene;
}

QString TickText(const TrendPane& pane, double mark, const std::string& separator) {
    if (pane.Word)
        return TrendValueText(mark, true, separator);
    return QString::fromStdString(ShownNumber(FormatNumber(mark, 1, pane.Axis.Decimals), separator));
}

QString TrendValueText(double value, bool word, const std::string& separator) {
    constexpr int digits = 10; // a counter of 32 bits is shown whole
    if (word)
        return (value < 0 ? "-" : "") +
               QString::number(static_cast<qlonglong>(std::fabs(value)), 16).toUpper();
    return QString::fromStdString(ShownNumber(QString::number(value, 'g', digits).toStdString(), separator));
}

std::optional<TrendColumn> ColumnNear(const TrendScene& scene, std::size_t line, std::int64_t atMs) {
    const std::vector<TrendColumn>& columns = scene.Columns[line];
    const auto next = std::ranges::lower_bound(columns, atMs, {}, &TrendColumn::LastMs);
    const auto near = static_cast<std::int64_t>(NearPixels * scene.Time.MsPerPixel);
    const bool after = next != columns.end();
    const bool before = next != columns.begin();
    const std::int64_t toNext = after ? std::max<std::int64_t>(next->FirstMs - atMs, 0) : near + 1;
    const std::int64_t toLast = before ? atMs - std::prev(next)->LastMs : near + 1;
    const bool between = after && before && !std::prev(next)->Broken;
    if (std::min(toNext, toLast) > near && !between)
        return {};
    return after && (toNext <= toLast || !before) ? *next : *std::prev(next);
}

} // namespace kavro
