#pragma once

#include "link/messages.h"
#include "monitor/crossing_log.h"
#include "monitor/csv_log.h"
#include "monitor/kept_history.h"
#include "monitor/monitor.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QComboBox;
class QLabel;
class QPushButton;

namespace kavro {

class FlowRow;

/// What a monitor keeps its readings with.
struct KeepingMeans {
    kavro::Session& Session;
    kavro::Messages& Messages;
    kavro::WallClock WallClock;
    HistoryOpener OpenHistory; ///< none: no history can be kept
};

/// What happens where a monitor keeps its readings.
struct KeepingEvents {
    std::function<void(NewLogFile)> NewFile;       ///< the user has chosen
    std::function<void(TrendHistory*)> HistoryNow; ///< can be looked back into; null: no longer
};

/// Keeps what a monitor reads: in a log file and in a history, with their buttons and what there is to say of
/// them. What cannot be kept is told once; the turns go on.
class MonitorKeeping : public QWidget {
public:
    MonitorKeeping(KeepingMeans means, KeepingEvents events);
    ~MonitorKeeping() override;

    /// Keeps the values of a turn, and the crossings among them.
    void Take(const MonitorTurn& turn, const WallTime& time, const std::vector<Crossing>& crossings);

    /// Whether a log or a history goes on.
    bool Keeps() const { return log_.IsOpen() || history_ != nullptr; }

    /// Throws `RuntimeFailure` when that file is the log or the history that goes on.
    void RefuseKept(const std::string& path) const;

    /// Adds a button at the end of the row.
    void AddButton(QPushButton* button);

private:
    QLayout* BuildStates();
    QPushButton* BuildButton(const char* name, const char* spoken, void (MonitorKeeping::*clicked)());
    void BuildNewFile();
    void WriteLog(const MonitorTurn& turn, const WallTime& time, const std::vector<Crossing>& crossings);
    void LogBtn_Click();
    void StoreBtn_Click();
    void StopStoring();
    void HistoryTells(const std::string& text);
    void TellLater(const std::string& text);
    void ShowStates();

    KeepingMeans means_;
    KeepingEvents events_;
    CsvLog log_;
    CrossingLog crossingLog_;
    std::string historySays_; // what it told last
    bool telling_ = false;    // while a message about the history is up
    FlowRow* row_ = nullptr;
    QLabel* logState_ = nullptr;
    QLabel* storeState_ = nullptr;
    QPushButton* logBtn_ = nullptr;
    QPushButton* storeBtn_ = nullptr;
    QComboBox* newFile_ = nullptr;
    std::unique_ptr<KeptHistory> history_; // last, as it may tell something while it goes
};

} // namespace kavro
