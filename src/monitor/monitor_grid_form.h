#pragma once

#include "monitor/monitor.h"
#include "monitor/trend_view_form.h"

#include <QTableWidget>

#include <functional>
#include <vector>

namespace kavro {

/// The grid of a monitor: a row per entry of the map, headed by its address and model, with its state, age
/// and values. A value is ticked for the trend by its box or the space bar.
class MonitorGrid : public QTableWidget {
public:
    /// `ticked` is called whenever the user ticks a value or takes the tick away.
    MonitorGrid(const Session& session, const Monitor& monitor, std::function<void()> ticked);

    /// Shows what the last turn on entry `index` brought.
    void ShowModule(int index);

    void ShowAll();
    /// Shows the tags of the line file that is open: those of modules in their headings, those of channels to
    /// screen readers, in tooltips and in the trend.
    void ShowTags();
    /// Shows how old the values are by now.
    void ShowAges();

    /// The trend of each ticked value, in the order of ticking.
    std::vector<TrendLine> TickedLines() const;

    QSize sizeHint() const override;

protected:
    void changeEvent(QEvent* event) override;
    bool viewportEvent(QEvent* event) override; // the tag and the age of a value as its tool tip

private:
    struct Tick {
        int Row = 0;
        int Column = 0;
        int Style = 0;
    };

    void Build();
    void FillRow(int index);
    void ShowHeading(int index);
    TagAndNote TagAt(int index, int place) const;
    void ShowValue(int index, int place);
    void TakeTick(QTableWidgetItem* item);
    int FreeStyle() const;
    void SetText(int row, int column, const QString& text);

    const Session& session_;
    const Monitor& monitor_;
    std::function<void()> ticked_;
    std::vector<Tick> ticks_;
};

} // namespace kavro
