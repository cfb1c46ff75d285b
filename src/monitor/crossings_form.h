#pragma once

#include "link/messages.h"
#include "monitor/crossings.h"

#include <QWidget>

class QPushButton;
class QTableWidget;

namespace kavro {

/// The list of crossings, the newest at its end, which it follows until the user scrolls up. A part of a
/// window: whoever has it calls `ShowNew` after each turn that brought some.
class CrossingsForm : public QWidget {
public:
    CrossingsForm(Session& session, Messages& messages, CrossingWatch& watch, QWidget* parent = nullptr);

    /// Shows the crossings that have come, and no longer those that are gone.
    void ShowNew();

protected:
    void changeEvent(QEvent* event) override;

private:
    void BuildTable();
    void AddRow(const Crossing& crossing);
    void Tint(int row, Side side);
    void Copy() const;
    void SaveBtn_Click();

    Session& session_;
    Messages& messages_;
    CrossingWatch& watch_;
    QTableWidget* table_ = nullptr;
    QPushButton* clearBtn_ = nullptr;
    QPushButton* saveBtn_ = nullptr;
    std::int64_t first_ = 0; // number of the crossing in the first row
    bool following_ = true;  // the end of the list
};

} // namespace kavro
