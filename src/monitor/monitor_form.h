#pragma once

#include "diag/panel_form.h"
#include "monitor/csv_log.h"
#include "monitor/monitor.h"
#include "monitor/trend.h"

class QLabel;
class QPushButton;
class QSplitter;
class QTimer;

namespace kavro {

class MonitorGrid;
class TrendView;

/// Shows the present values of every module of the map, reading one module each 500 ms, with a trend of the
/// values that the user ticks and a log to a file. Without a tick the values have the room of the trend.
class MonitorForm : public PanelForm {
public:
    MonitorForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent,
                WallClock wallClock = SystemTime);

protected:
    void Tick() override;
    void ShowStale(bool stale) override;

private:
    QWidget* BuildValues();
    QLayout* BuildButtons();
    void Log(const MonitorTurn& turn);
    void ShowAges();
    void ShowTrend();
    void GiveTrendRoom(bool ticked);
    QPushButton* BuildTagsButton();
    void TagsBtn_Click();
    void LogBtn_Click();
    void PictureBtn_Click();
    void ShowLogState();

    WallClock wallClock_;
    Monitor monitor_;
    Trend trend_;
    CsvLog log_{Session().OpenFile};
    MonitorGrid* grid_ = nullptr;
    QSplitter* splitter_ = nullptr;
    QList<int> shares_; // of the grid and the trend, when the trend was in sight last
    TrendView* trendView_ = nullptr;
    QLabel* trendHint_ = nullptr;
    QLabel* logState_ = nullptr;
    QPushButton* logBtn_ = nullptr;
    QPushButton* pictureBtn_ = nullptr;
    QTimer* outage_ = nullptr; // while nothing is read, the values grow older all the same
};

} // namespace kavro
