#pragma once

#include "monitor/grid_rows.h"
#include "monitor/monitor.h"
#include "monitor/thresholds.h"
#include "monitor/trend_ticks.h"

#include <QAbstractTableModel>

#include <functional>
#include <optional>
#include <vector>

namespace kavro {

/// What a grid of a monitor shows: state, age and values of each module in rows of `GridRows`. Everything is
/// looked up when it is painted, so that a turn costs what is in sight of it.
class MonitorTable : public QAbstractTableModel {
public:
    enum Column { StateColumn, AgeColumn, FirstValueColumn };
    /// The tag of a value's channel, as it is shown beside it.
    static constexpr int TagRole = Qt::UserRole + 1;

    /// `ticked` is called whenever the user ticks a value or takes the tick away.
    MonitorTable(Session& session, const Monitor& monitor, TrendTicks& ticks, std::function<void()> ticked);

    /// Shows these entries and no others.
    void SetModules(const std::vector<int>& indexes);
    /// Lays the values out anew in so many columns.
    void SetColumns(int columns);
    const GridRows& Rows() const { return rows_; }

    /// The value in a cell; nothing where there is none.
    std::optional<ValuePlace> ValueAt(const QModelIndex& cell) const;
    QModelIndex CellOf(const ValuePlace& value) const;
    /// The value of that name among those in the grid.
    std::optional<ValuePlace> Find(const ValueKey& key) const;
    ValueKey KeyOf(const ValuePlace& value) const;

    /// The value as it is shown; before the first turn without a number.
    MonitoredValue Shown(const ValuePlace& value) const;
    /// Where its last number stands to its thresholds.
    Side SideOf(const ValuePlace& value) const;

    /// Lets what shows entry `index` be painted anew.
    void ModuleChanged(int index);
    void AgesChanged();
    void AllChanged();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& cell, int role) const override;
    bool setData(const QModelIndex& cell, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& cell) const override;

private:
    QVariant ModuleData(const QModelIndex& cell, int role) const;
    QVariant ValueData(const ValuePlace& value, int role) const;
    QVariant RowHeading(int row, int role) const;
    QString ColumnHeading(int column) const;
    QString CellText(const ValuePlace& value) const;
    QString SpokenText(const ValuePlace& value) const;
    QString Tip(const ValuePlace& value) const;
    TagAndNote TagOf(const ValuePlace& value) const;
    bool CanBeTicked(const ValuePlace& value) const;
    void Changed(int row, int column);

    Session& session_;
    const Monitor& monitor_;
    TrendTicks& ticks_;
    std::function<void()> ticked_;
    std::vector<std::vector<ChannelValue>> unread_; // by entry: its values as they are before a turn
    GridRows rows_;
};

} // namespace kavro
