#pragma once

#include "monitor/axis_ticks.h"
#include "monitor/time_marks.h"
#include "monitor/trend.h"

#include <QString>
#include <QWidget>

#include <cstdint>
#include <optional>
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
    std::vector<TrendPoint> Points;
};

/// The last ten minutes of some values over time: a pane with a scaled axis per unit, one above the other.
class TrendView : public QWidget {
public:
    /// `separator`: the user's decimal separator, for the axes.
    explicit TrendView(std::string separator);

    /// Shows these lines as of the moment `nowMs` of the clock.
    void Show(std::vector<TrendLine> lines, std::int64_t nowMs);

    /// What is shown, as an image of twice the resolution; shown at `now`, it has date and time on its axis.
    QImage Picture(const WallTime& now) const;

    QSize sizeHint() const override { return {560, 480}; }
    QSize minimumSizeHint() const override { return {260, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    struct Pane {
        QString Unit;
        bool Word = false;
        std::vector<const TrendLine*> Lines;
        AxisTicks Axis;
        QRectF Legend, Plot;
    };

    void Paint(QPainter& painter, const std::optional<WallTime>& now = {}) const;
    std::vector<Pane> Panes() const;
    void Place(std::vector<Pane>& panes, int timeRows) const;
    std::vector<TimeMark> TimeMarks(double width, const std::optional<WallTime>& now) const;
    double LegendHeight(const Pane& pane, double width) const;
    void ScaleAxis(Pane& pane, double height) const;
    QString TickText(const Pane& pane, double mark) const;
    void PaintLegend(QPainter& painter, const Pane& pane) const;
    void PaintAxes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const;
    void PaintTimes(QPainter& painter, const Pane& pane, const std::vector<TimeMark>& times) const;
    void PaintLine(QPainter& painter, const Pane& pane, const TrendLine& line) const;

    std::string separator_;
    std::vector<TrendLine> lines_;
    std::int64_t nowMs_ = 0;
};

} // namespace kavro
