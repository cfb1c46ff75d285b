#pragma once

#include "map/session.h"
#include "traffic/traffic_filter.h"
#include "traffic/traffic_log.h"

#include <QAbstractTableModel>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// The rows of the log that a filter lets through, as a table. Nothing is told it of an exchange: whoever
/// shows the table calls `Advance` now and then, and again at once while it has not caught up.
class TrafficModel : public QAbstractTableModel {
public:
    TrafficModel(const Session& session, const TrafficLog& log);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Begins anew with what this filter lets through.
    void SetFilter(const TrafficFilter& filter);
    /// Shows bytes in hexadecimal, or as text; with a filter for text it begins anew.
    void SetHex(bool hex);
    /// What comes from now on is not taken over until that is taken back.
    void SetPaused(bool paused);
    bool Paused() const { return pausedAt_.has_value(); }

    /// Takes over what has come, for some milliseconds of processor time; true when it has caught up.
    bool Advance(int milliseconds);
    /// How far that is, 0 to 1.
    double Share() const;
    /// Rows that wait until the pause is over.
    std::int64_t Waiting() const;

    /// Lets go of rows that the log has dropped; how many these were, all at the top.
    int LetGo();

    /// The number in the log of a row shown.
    std::int64_t Number(int row) const { return numbers_[static_cast<std::size_t>(row)]; }
    std::vector<std::int64_t> Numbers() const { return {numbers_.begin(), numbers_.end()}; }
    /// The row that shows this number, or the next one after it.
    int RowOf(std::int64_t number) const;
    /// Where a look for a failure has ended.
    struct Place {
        int Row = -1;        ///< -1: there is none
        bool Failed = false; ///< else the time was up
    };
    /// The first row after `row` that has failed, or as far as a look of some milliseconds leads.
    Place NextFailure(int row, int milliseconds) const;

    /// The whole text of a cell.
    QString CellText(int row, TrafficColumn column) const;
    /// Addresses of the commands seen so far.
    const std::vector<bool>& Addresses() const { return addresses_; }
    const KnownModules& Known() const { return known_; }
    const TrafficStyle& Style() const { return style_; }

private:
    std::int64_t Target() const { return pausedAt_.value_or(log_.End()); }
    void BeginAnew();
    void See(const TrafficRow& row);
    void RefreshKnown();
    void Learn(std::string_view sent, std::string_view received);
    QVariant Colour(const TrafficRow& row) const;

    const Session& session_;
    const TrafficLog& log_;
    KnownModules known_;
    std::chrono::steady_clock::time_point knownUntil_{};      // then it is made anew
    std::map<std::string, std::string, std::less<>> learned_; // replies that tell a model, by command
    TrafficStyle style_;
    TrafficFilter filter_;
    std::deque<std::int64_t> numbers_; // of the rows shown
    std::int64_t next_ = 0;            // the first that was not looked at
    std::int64_t began_ = 0;           // where the filter began
    std::optional<std::int64_t> pausedAt_;
    std::vector<bool> addresses_;
};

} // namespace kavro
