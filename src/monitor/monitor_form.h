#pragma once

#include "diag/panel_form.h"
#include "monitor/crossings.h"
#include "monitor/kept_history.h"
#include "monitor/monitor.h"
#include "monitor/trend.h"

#include <cstdint>
#include <functional>

class QPushButton;
class QTimer;

namespace kavro {

class CrossingsForm;
class MonitorKeeping;
class MonitorPane;
class MonitorSettings;

/// Shows the present values of the modules of the map, reading one module each interval or as fast as the
/// line allows, with a trend of the values that the user ticks, thresholds, a log and a history. What the
/// user chooses is remembered in `Session::Preferences`.
class MonitorForm : public PanelForm {
public:
    /// `openHistory`: how histories are opened; none: they cannot be kept.
    MonitorForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent,
                WallClock wallClock = SystemTime, HistoryOpener openHistory = {});
    ~MonitorForm() override;

protected:
    void Tick() override;
    void ShowStale(bool stale) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    using Change = std::function<void(MonitorPreferences&)>;

    MonitorPreferences& Chosen() const { return Session().Preferences.Monitor; }
    void Remember(const Change& change);
    void BuildRows(HistoryOpener openHistory);
    void BuildSettings();
    void BuildKeeping(HistoryOpener openHistory);
    QPushButton* BuildButton(const char* text, const char* name, const char* spoken,
                             void (MonitorForm::*clicked)());
    void AddAction(const char* text, const char* name, const char* shortcut,
                   void (MonitorForm::*triggered)());
    void Take(const MonitorTurn& turn);
    void Pace();
    int NextTickMs() const;
    void ShowAges();
    void ShowUse();
    void IntervalChanged(int ms);
    void ModulesBtn_Click();
    void TagsBtn_Click();
    void ThresholdsBtn_Click();
    void LargeBtn_Click();
    void CrossingsBtn_Click();
    void PictureBtn_Click();
    void DataBtn_Click();

    WallClock wallClock_;
    Monitor monitor_;
    Trend trend_;
    CrossingWatch watch_;
    MonitorSettings* settings_ = nullptr; // none of these in a window without modules
    MonitorPane* pane_ = nullptr;
    CrossingsForm* crossings_ = nullptr;
    MonitorKeeping* keeping_ = nullptr;
    QPushButton* thresholdsBtn_ = nullptr;
    QPushButton* largeBtn_ = nullptr;
    QPushButton* crossingsBtn_ = nullptr;
    QPushButton* pictureBtn_ = nullptr;
    QPushButton* dataBtn_ = nullptr;
    QTimer* outage_ = nullptr;  // while nothing is read, what is kept goes on all the same
    QTimer* refresh_ = nullptr; // values grow older between two turns
    std::int64_t refreshedAt_ = 0;
    int tickMs_ = MonitorTickMs;
    bool saveTold_ = false;
};

} // namespace kavro
