#pragma once

#include "monitor/monitor_table_form.h"
#include "monitor/trend_view_form.h"

#include <QTableView>

#include <functional>
#include <optional>
#include <vector>

namespace kavro {

/// What the user does in a grid of a monitor.
struct GridEvents {
    std::function<void()> Ticked = [] {};                          ///< a value, or took the tick away
    std::function<void(const ValuePlace&)> Enlarge = [](auto&) {}; ///< wants to see a value alone
};

/// The grid of a monitor: each module with its address and model, its state, age and values, in as many
/// columns of values as there is room for; the values that are left go on in further rows. A value is ticked
/// for the trend by its box or the space bar.
class MonitorGrid : public QTableView {
public:
    /// `ticked`: the values that are ticked when the window opens.
    MonitorGrid(Session& session, const Monitor& monitor, const std::vector<ValueKey>& ticked,
                GridEvents events);

    /// Shows these entries and no others.
    void SetModules(const std::vector<int>& indexes);

    /// Shows what the last turn on entry `index` brought.
    void ShowModule(int index) { table_.ModuleChanged(index); }
    void ShowAll() { table_.AllChanged(); }
    /// Shows how old the values are by now.
    void ShowAges() { table_.AgesChanged(); }
    /// Shows the tags of the line file that is open: those of modules in their headings, those of channels
    /// beside their values.
    void ShowTags();

    /// The line of each ticked value in the trend, in the order of ticking.
    std::vector<TrendLine> TickedLines() const;
    /// All values that are ticked, also those that are not in the grid.
    std::vector<ValueKey> Ticked() const { return ticks_.Keys(); }

    /// The value that the user has chosen: that of the current cell, else the first of its module; nothing
    /// when there is none.
    std::optional<ValuePlace> CurrentValue() const;
    void SetCurrentValue(const ValuePlace& value);
    /// The entry of the module that the user has chosen; nothing when there are none.
    std::optional<int> CurrentModule() const;

    const MonitorTable& Table() const { return table_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void keyboardSearch(const QString&) override {} // letters are for buttons

protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void LayOut();
    void ShareWidth();
    void SetColumnsInPlace(int columns);
    int LeastWidth() const;
    int WidthOf(int valueColumns) const;
    int WidthFor(const QString& text, int room) const;
    void Enlarge(const QModelIndex& cell);

    Session& session_;
    GridEvents events_;
    TrendTicks ticks_;
    MonitorTable table_;
    bool layingOut_ = false; // scroll bars that come and go change the width once more
};

} // namespace kavro
