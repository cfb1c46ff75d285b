#pragma once

#include "link/wall_time.h"
#include "map/monitor_preferences.h"
#include "monitor/axis_ticks.h"
#include "monitor/time_marks.h"
#include "monitor/trend.h"
#include "monitor/trend_history.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QImage;
class QPainter;

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

/// Some values over time: a pane with a scaled axis per unit, one above the other. Goes on with the time
/// until the user looks back, zooms and pans with mouse and keys, and has a cursor that reads values.
class TrendView : public QWidget {
public:
    /// `separator`: the user's decimal separator, for all numbers.
    TrendView(const Trend& trend, std::string separator);

    void SetLines(std::vector<TrendLine> lines);

    /// What time it is; a view that follows goes on to it. Draws anew.
    void SetNow(const WallTime& now);

    /// Shows that many minutes up to now, and follows.
    void SetSpan(int minutes);

    /// How much time is shown, in ms.
    std::int64_t SpanMs() const { return spanMs_; }

    /// Where to look for what the memory does not have, or nullptr; it must outlive the view or be taken
    /// away.
    void SetHistory(TrendHistory* history);

    /// Whether the view goes on with the time.
    bool Following() const { return true; }

    /// What is shown, as an image of twice the resolution.
    QImage Picture() const;

    /// What is shown, as the text of a CSV file.
    std::string Data() const;

    /// Told when the user has zoomed: `SpanMs` is another.
    std::function<void()> SpanChanged;

    QSize sizeHint() const override { return {560, 480}; }
    QSize minimumSizeHint() const override { return {260, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Pane {
        QString Unit;
        bool Word = false;
        std::vector<std::size_t> Lines;
        AxisTicks Axis;
        QRectF Legend, Plot;
    };

    void Paint(QPainter& painter) const;
    std::vector<Pane> Panes() const;
    void Place(std::vector<Pane>& panes, int timeRows) const;
    std::vector<TimeMark> TimeMarks(double width) const;
    double LegendHeight(const Pane& pane, double width) const;
    void ScaleAxis(Pane& pane, double height) const;
    QString TickText(const Pane& pane, double mark) const;
    void PaintLegend(QPainter& painter, const Pane& pane) const;
    void PaintAxes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const;
    void PaintTimes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const;
    void PaintLine(QPainter& painter, const Pane& pane, const TrendLine& line) const;
    std::vector<TrendColumn> Columns(const TrendLine& line) const;
    double PlaceOf(const QRectF& plot, std::int64_t ageMs) const;

    const Trend& trend_;
    std::string separator_;
    std::vector<TrendLine> lines_;
    WallTime now_;
    std::int64_t spanMs_ = std::int64_t{UsualTrendMinutes} * 60'000;
    TrendHistory* history_ = nullptr;
};

} // namespace kavro
