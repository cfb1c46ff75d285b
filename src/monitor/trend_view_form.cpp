#include "monitor/trend_view_form.h"

#include "link/text.h"
#include "monitor/trend_style_form.h"
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
constexpr int PictureScale = 2;
constexpr const char* WidestTime = "2000-00-00";

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

TrendView::TrendView(const Trend& trend, std::string separator)
    : trend_(trend), separator_(std::move(separator)) {
    Named(this, "TrendView", "Trend of the ticked values");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void TrendView::SetLines(std::vector<TrendLine> lines) {
    lines_ = std::move(lines);
    QStringList names;
    for (const TrendLine& line : lines_)
        names << line.Name;
    setAccessibleDescription(names.join(", "));
    update();
}

void TrendView::SetNow(const WallTime& now) {
    now_ = now;
    update();
}

void TrendView::SetSpan(int minutes) {
    spanMs_ = std::int64_t{minutes} * 60'000;
    update();
}

void TrendView::SetHistory(TrendHistory* history) {
    history_ = history;
    update();
}

std::string TrendView::Data() const {
    return {};
}

std::vector<TrendColumn> TrendView::Columns(const TrendLine& line) const {
    return trend_.Columns(line.Index, line.Place, now_.UnixMs - spanMs_, now_.UnixMs + 1, 100);
}

// Where on the time axis that moment stands.
double TrendView::PlaceOf(const QRectF& plot, std::int64_t ageMs) const {
    return plot.right() - static_cast<double>(ageMs) / static_cast<double>(spanMs_) * plot.width();
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
    if (panes.empty())
        return;
    Place(panes, 2);
    const auto times = TimeMarks(panes.front().Plot.width());
    for (const Pane& pane : panes) {
        PaintLegend(painter, pane);
        PaintAxes(painter, pane, times);
        painter.setClipRect(pane.Plot.adjusted(-Gap, -Gap, Gap, Gap));
        for (const std::size_t line : pane.Lines)
            PaintLine(painter, pane, lines_[line]);
        painter.setClipping(false);
    }
    PaintTimes(painter, panes.back(), times);
}

std::vector<TrendView::Pane> TrendView::Panes() const {
    std::vector<Pane> panes;
    for (std::size_t number = 0; number < lines_.size(); ++number) {
        const TrendLine& line = lines_[number];
        auto pane = std::ranges::find(panes, line.Unit, &Pane::Unit);
        if (pane == panes.end())
            pane = panes.insert(pane, Pane{line.Unit, line.Word, {}, {}, {}, {}});
        pane->Lines.push_back(number);
    }
    return panes;
}

// Shares the height out; the panes stand under each other at the same left edge, as they share the time.
void TrendView::Place(std::vector<Pane>& panes, int timeRows) const {
    const QFontMetricsF metrics(font());
    const double width = this->width() - 2 * Margin;
    const double timeHeight = timeRows * metrics.height() + Gap;
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
    for (const std::size_t line : pane.Lines)
        for (const TrendColumn& column : Columns(lines_[line])) {
            low = std::min(low.value_or(column.Least), column.Least);
            high = std::max(high.value_or(column.Most), column.Most);
        }
    const double steps = height / (LinesPerStep * QFontMetricsF(font()).height());
    pane.Axis = RoundTicks(low.value_or(0), high.value_or(1), std::min(static_cast<int>(steps), MostSteps),
                           pane.Word);
}

std::vector<TimeMark> TrendView::TimeMarks(double width) const {
    const double room = QFontMetricsF(font()).horizontalAdvance(WidestTime) + EntryGap;
    const double minute = width * 60'000 / static_cast<double>(spanMs_);
    const int step = minute >= room ? 1 : 2 * minute >= room ? 2 : 5;
    return ClockMarks(spanMs_, step, now_);
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
    for (const std::size_t line : pane.Lines)
        flow.Place(TrendSampleWidth + Gap + metrics.horizontalAdvance(lines_[line].Name));
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
    for (const std::size_t number : pane.Lines) {
        const TrendLine* const line = &lines_[number];
        const QPointF place = flow.Place(TrendSampleWidth + Gap + metrics.horizontalAdvance(line->Name));
        DrawTrendSample(painter, place + QPointF(0, metrics.height() / 2), line->Style, palette());
        painter.setPen(ink);
        painter.drawText(place + QPointF(TrendSampleWidth + Gap, metrics.ascent()), line->Name);
    }
}

void TrendView::PaintAxes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const {
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
    painter.setPen(faint);
    for (const TimeMark& time : times) {
        const double x = PlaceOf(plot, time.AgeMs);
        painter.drawLine(QPointF(x, plot.top()), QPointF(x, plot.bottom()));
    }
    painter.setPen(ink);
    painter.drawLine(plot.topLeft(), plot.bottomLeft());
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
}

void TrendView::PaintTimes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const {
    const QFontMetricsF metrics(font());
    painter.setPen(palette().color(QPalette::Text));
    for (const TimeMark& time : times) {
        double y = pane.Plot.bottom() + Gap + metrics.ascent();
        for (const std::string& line : {time.Text, time.Date}) {
            const QString text = QString::fromStdString(line);
            const double width = metrics.horizontalAdvance(text);
            const double x = PlaceOf(pane.Plot, time.AgeMs) - width / 2;
            painter.drawText(QPointF(std::max(std::min(x, this->width() - width - 2), 2.0), y), text);
            y += metrics.height();
        }
    }
}

void TrendView::PaintLine(QPainter& painter, const Pane& pane, const TrendLine& line) const {
    const QRectF& plot = pane.Plot;
    QPainterPath path;
    std::vector<QPointF> markers;
    bool connected = false;
    const double phase = line.Style % 5 * MarkerSpacing / 5.0; // markers of two lines rarely meet
    int lastSlot = -1;
    for (const TrendColumn& column : Columns(line)) {
        const QPointF place(PlaceOf(plot, now_.UnixMs - column.FirstMs),
                            plot.bottom() - (column.First - pane.Axis.Low) /
                                                (pane.Axis.High - pane.Axis.Low) * plot.height());
        const int slot = static_cast<int>(
            (static_cast<double>(column.FirstMs) / static_cast<double>(spanMs_) * plot.width() + phase) /
            MarkerSpacing);
        if (slot != lastSlot || !connected)
            markers.push_back(place);
        lastSlot = slot;
        if (connected)
            path.lineTo(place);
        else
            path.moveTo(place);
        connected = !column.Broken;
    }
    painter.strokePath(path, TrendPen(line.Style, palette()));
    for (const QPointF& marker : markers)
        DrawTrendMarker(painter, marker, line.Style, palette());
}

} // namespace kavro
