#pragma once

#include "traffic/traffic_model_form.h"

#include <QTableView>

#include <optional>

namespace kavro {

/// The table of rows. It follows the last row until one scrolls up, and again from the end on.
class TrafficTable : public QTableView {
public:
    explicit TrafficTable(TrafficModel& model);

    /// Takes over what has come for some milliseconds, and keeps in place what is looked at; true when the
    /// model has caught up.
    bool Advance(int milliseconds);

    /// Filters anew; the current row stays the current one when it is still shown.
    void SetFilter(const TrafficFilter& filter);

    /// Goes to the next failure after the current row, or as far as a short look for it leads.
    TrafficModel::Place GoToNextFailure();

    /// Makes room for bytes in hexadecimal, or as texts.
    void SetHex(bool hex);

    /// The selected rows, tab separated, a line each; at most `MostCopied`.
    QString SelectedText() const;
    int SelectedCount() const;
    static constexpr int MostCopied = 20000;

    QSize sizeHint() const override { return preferred_; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void GoTo(int row);
    void Return();

    TrafficModel& model_;
    QSize preferred_;
    bool following_ = true;
    bool moving_ = false;                 // the table scrolls, not the user
    std::optional<std::int64_t> current_; // number of the row to return to when the filter is through
};

} // namespace kavro
