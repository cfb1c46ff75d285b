#include "diag/trend_view_form.h"

#include "diag/trend_style_form.h"
#include "link/text.h"
#include "ui/named.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double Margin = 10;
constexpr double Gap = 6; // between a text and what it belongs to
constexpr double EntryGap = 16;
constexpr int MarkerSpacing = 70;    // pixels between two markers of a line
constexpr double LinesPerStep = 1.8; // text lines that a step of an axis is high at least
constexpr int MostSteps = 8;
constexpr double TimeStepWidth = 70;
constexpr int PictureScale = 2;
constexpr const char* Hint =
    "Tick a value in the grid to see its trend: click its box, or press Space on it.";

// Where the entries of a legend stand: on as many lines as the width needs.
class Flow {
public:
    Flow(QPointF start, double width, double lineHeight)
        : start_(start), width_(width), lineHeight_(lineHeight), next_(start) {}

    QPointF Place(double width) {
        if (next_.x() > start_.x() && next_.x() + width > start_.x() + width_)
            next_ = {start_.x(), next_.y() + lineHeight_};
        const QPointF place = next_;
        next_ += {width + EntryGap, 0};
        return place;
    }

    double Height() const { return next_.y() + lineHeight_ - start_.y(); }

private:
    QPointF start_;
    double width_;
    double lineHeight_;
    QPointF next_;
};

QFont Bold(QFont font) {
    font.setBold(true);
    return font;
}

QColor Faint(const QPalette& palette) {
    QColor color = palette.color(QPalette::Text);
    color.setAlpha(45);
    return color;
}

} // namespace

TrendView::TrendView(std::string separator) : separator_(std::move(separator)) {
    Named(this, "TrendView", "Trend of the ticked values over the last ten minutes");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void TrendView::Show(std::vector<TrendLine> lines, std::int64_t nowMs) {
    lines_ = std::move(lines);
    nowMs_ = nowMs;
    QStringList names;
    for (const TrendLine& line : lines_)
        names << line.Name;
    setAccessibleDescription(names.join(", "));
    update();
}

QImage TrendView::Picture() const {
    QImage image(size() * PictureScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(PictureScale);
    QPainter painter(&image);
    painter.setFont(font());
    Paint(painter);
    return image;
}

void TrendView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    Paint(painter);
}

void TrendView::Paint(QPainter& painter) const {
    painter.fillRect(rect(), palette().color(QPalette::Base));
    painter.setRenderHint(QPainter::Antialiasing);
    std::vector<Pane> panes = Panes();
    if (panes.empty()) {
        painter.setPen(palette().color(QPalette::Text));
        painter.drawText(rect().marginsRemoved({30, 30, 30, 30}), Qt::AlignCenter | Qt::TextWordWrap, Hint);
        return;
    }
    Place(panes);
    for (const Pane& pane : panes) {
        PaintLegend(painter, pane);
        PaintAxes(painter, pane, &pane == &panes.back());
        painter.setClipRect(pane.Plot.adjusted(-Gap, -Gap, Gap, Gap));
        for (const TrendLine* line : pane.Lines)
            PaintLine(painter, pane, *line);
        painter.setClipping(false);
    }
}

std::vector<TrendView::Pane> TrendView::Panes() const {
    std::vector<Pane> panes;
    for (const TrendLine& line : lines_) {
        auto pane = std::ranges::find(panes, line.Unit, &Pane::Unit);
        if (pane == panes.end())
            pane = panes.insert(pane, Pane{line.Unit, line.Word, {}, {}, {}, {}});
        pane->Lines.push_back(&line);
    }
    return panes;
}

// Shares the height out; the panes stand under each other at the same left edge, as they share the time.
void TrendView::Place(std::vector<Pane>& panes) const {
    const QFontMetricsF metrics(font());
    const double width = this->width() - 2 * Margin;
    const double timeHeight = metrics.height() + Gap;
    double legends = 0;
    for (const Pane& pane : panes)
        legends += LegendHeight(pane, width) + Gap;
    const double count = static_cast<double>(panes.size());
    const double plotHeight = std::max((height() - 2 * Margin - timeHeight - legends) / count - Margin, 20.0);

    double labelWidth = 0;
    for (Pane& pane : panes) {
        ScaleAxis(pane, plotHeight);
        for (const double mark : pane.Axis.Marks)
            labelWidth = std::max(labelWidth, metrics.horizontalAdvance(TickText(pane, mark)));
    }
    double top = Margin;
    for (Pane& pane : panes) {
        pane.Legend = {Margin, top, width, LegendHeight(pane, width)};
        pane.Plot = {Margin + labelWidth + Gap, pane.Legend.bottom() + Gap, width - labelWidth - 2 * Gap,
                     plotHeight};
        top = pane.Plot.bottom() + Margin;
    }
}

void TrendView::ScaleAxis(Pane& pane, double height) const {
    std::optional<double> low, high;
    for (const TrendLine* line : pane.Lines)
        for (const TrendPoint& point : line->Points)
            if (point.Value) {
                low = std::min(low.value_or(*point.Value), *point.Value);
                high = std::max(high.value_or(*point.Value), *point.Value);
            }
    const double steps = height / (LinesPerStep * QFontMetricsF(font()).height());
    pane.Axis = RoundTicks(low.value_or(0), high.value_or(1), std::min(static_cast<int>(steps), MostSteps),
                           pane.Word);
}

QString TrendView::TickText(const Pane& pane, double mark) const {
    if (pane.Word)
        return (mark < 0 ? "-" : "") + QString::number(static_cast<qlonglong>(std::fabs(mark)), 16).toUpper();
    return QString::fromStdString(ShownNumber(FormatNumber(mark, 1, pane.Axis.Decimals), separator_));
}

double TrendView::LegendHeight(const Pane& pane, double width) const {
    const QFontMetricsF metrics(font());
    Flow flow({}, width, metrics.lineSpacing());
    flow.Place(QFontMetricsF(Bold(font())).horizontalAdvance(pane.Unit));
    for (const TrendLine* line : pane.Lines)
        flow.Place(TrendSampleWidth + Gap + metrics.horizontalAdvance(line->Name));
    return flow.Height();
}

void TrendView::PaintLegend(QPainter& painter, const Pane& pane) const {
    const QFontMetricsF metrics(font());
    Flow flow(pane.Legend.topLeft(), pane.Legend.width(), metrics.lineSpacing());
    const QColor ink = palette().color(QPalette::Text);
    painter.setPen(ink);
    painter.setFont(Bold(font()));
    painter.drawText(flow.Place(QFontMetricsF(painter.font()).horizontalAdvance(pane.Unit)) +
                         QPointF(0, metrics.ascent()),
                     pane.Unit);
    painter.setFont(font());
    for (const TrendLine* line : pane.Lines) {
        const QPointF place = flow.Place(TrendSampleWidth + Gap + metrics.horizontalAdvance(line->Name));
        DrawTrendSample(painter, place + QPointF(0, metrics.height() / 2), line->Style, palette());
        painter.setPen(ink);
        painter.drawText(place + QPointF(TrendSampleWidth + Gap, metrics.ascent()), line->Name);
    }
}

void TrendView::PaintAxes(QPainter& painter, const Pane& pane, bool withTime) const {
    const QFontMetricsF metrics(font());
    const QRectF& plot = pane.Plot;
    const QColor ink = palette().color(QPalette::Text);
    const QColor faint = Faint(palette());
    for (const double mark : pane.Axis.Marks) {
        const double y =
            plot.bottom() - (mark - pane.Axis.Low) / (pane.Axis.High - pane.Axis.Low) * plot.height();
        painter.setPen(faint);
        painter.drawLine(QPointF(plot.left(), y), QPointF(plot.right(), y));
        painter.setPen(ink);
        const QString text = TickText(pane, mark);
        painter.drawText(
            QPointF(plot.left() - Gap - metrics.horizontalAdvance(text), y + metrics.capHeight() / 2), text);
    }
    const int minutes = static_cast<int>(TrendSpanMs / 60'000);
    const int step = plot.width() / minutes >= TimeStepWidth       ? 1
                     : plot.width() / minutes * 2 >= TimeStepWidth ? 2
                                                                   : 5;
    for (int minute = 0; minute <= minutes; minute += step) {
        const double x = plot.right() - plot.width() * minute / minutes;
        painter.setPen(faint);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
        if (!withTime)
            continue;
        const QString text = minute == 0 ? QString("now") : QString("-%1 min").arg(minute);
        const double width = metrics.horizontalAdvance(text);
        painter.setPen(ink);
        painter.drawText(QPointF(std::min(x - width / 2, this->width() - width - 2),
                                 plot.bottom() + Gap + metrics.ascent()),
                         text);
    }
    painter.setPen(ink);
    painter.drawLine(plot.topLeft(), plot.bottomLeft());
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
}

void TrendView::PaintLine(QPainter& painter, const Pane& pane, const TrendLine& line) const {
    const QRectF& plot = pane.Plot;
    QPainterPath path;
    std::vector<QPointF> markers;
    bool connected = false;
    const double phase = line.Style % 5 * MarkerSpacing / 5.0; // markers of two lines rarely meet
    int lastSlot = -1;
    for (const TrendPoint& point : line.Points) {
        if (!point.Value) {
            connected = false;
            continue;
        }
        const double age = static_cast<double>(nowMs_ - point.AtMs) / static_cast<double>(TrendSpanMs);
        const QPointF place(plot.right() - age * plot.width(),
                            plot.bottom() - (*point.Value - pane.Axis.Low) /
                                                (pane.Axis.High - pane.Axis.Low) * plot.height());
        const int slot = static_cast<int>(
            (static_cast<double>(point.AtMs) / static_cast<double>(TrendSpanMs) * plot.width() + phase) /
            MarkerSpacing);
        if (slot != lastSlot || !connected)
            markers.push_back(place);
        lastSlot = slot;
        if (connected)
            path.lineTo(place);
        else
            path.moveTo(place);
        connected = true;
    }
    painter.strokePath(path, TrendPen(line.Style, palette()));
    for (const QPointF& marker : markers)
        DrawTrendMarker(painter, marker, line.Style, palette());
}

} // namespace kavro
