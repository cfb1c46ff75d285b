#pragma once

#include "monitor/large_value_form.h"
#include "monitor/monitor_grid_form.h"
#include "monitor/trend.h"

#include <QStackedWidget>

#include <functional>
#include <optional>
#include <vector>

class QLabel;
class QSplitter;

namespace kavro {

/// What a monitor's pane shows it from.
struct PaneSources {
    kavro::Session& Session;
    const kavro::Monitor& Monitor;
    const kavro::Trend& Trend;
};

/// What happens in the pane of a monitor.
struct PaneEvents {
    std::function<void()> Ticked;  ///< other values are ticked now
    std::function<void()> Swapped; ///< one value is shown alone from now on, or no longer
};

/// The values of a monitor: the grid beside the trend of the values that the user ticks, which have the room
/// of the trend when there are none; or one value alone, as large as possible.
class MonitorPane : public QStackedWidget {
public:
    MonitorPane(const PaneSources& sources, PaneEvents events);

    /// Lets the values have the room of the trend until one is ticked; called when the window has its size.
    void Begin();

    MonitorGrid& Grid() { return *grid_; }
    TrendView& Trend() { return *trendView_; }

    /// Shows modules that are not left out, and no others.
    void ShowModules();
    void ShowModule(int index);
    /// Shows all anew: tags, thresholds and states.
    void ShowAll();
    /// Shows how old the values are by now.
    void ShowAges(const WallTime& now);

    bool ShowsTrend() const;
    bool ShowsLarge() const { return large_ && currentWidget() == large_; }
    void Enlarge(const ValuePlace& value);
    void ShowGrid();

    /// The value that is shown alone or, in the grid, is current; nothing when there are no values.
    std::optional<ValuePlace> CurrentValue() const;

private:
    std::vector<int> ModulesToRead() const;
    QWidget* BuildGridAndTrend(const PaneSources& sources);
    void GiveTrendRoom(bool ticked);
    void ShowTicked();
    void ShowLarge();
    void Step(int steps);
    LargeText TextOf(const ValuePlace& value) const;

    const kavro::Session& session_;
    const Monitor& monitor_;
    PaneEvents events_;
    MonitorGrid* grid_ = nullptr;
    TrendView* trendView_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QList<int> shares_; // of the grid and the trend, when the trend was in sight last
    QLabel* hint_ = nullptr;
    LargeValue* large_ = nullptr;
    std::optional<ValuePlace> enlarged_;
};

} // namespace kavro
