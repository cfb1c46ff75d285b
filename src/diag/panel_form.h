#pragma once

#include "diag/line_recovery.h"
#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

#include <deque>
#include <functional>
#include <string>
#include <vector>

class QLabel;
class QTimer;
class QVBoxLayout;

namespace kavro {

class TagLabel;

/// What the panels share: the head with the module, the statistics of the line, Exit, the polling timer
/// `Timer1`, and what happens when the port fails.
///
/// A tick is a row of steps, best of one transaction each; events run between two steps and nowhere else. So
/// a step is never interrupted, what the user does comes between two transactions, and the panel can be
/// closed there at once. A tick that is due while one runs follows it directly, but only one does.
///
/// A port that fails is told once. The panel then shows what it has as stale, opens the port again by itself,
/// and goes on with the next tick that succeeds, also while the message is still up.
class PanelForm : public QDialog {
public:
    /// Begins a tick, as `Timer1` does.
    void Timer1_Timer();
    /// Whether a tick or an operation is still going on.
    bool Busy() const { return running_ || !actions_.empty() || !steps_.empty(); }

    void reject() override; // Exit, Escape and the close button

protected:
    using Step = std::function<void()>;

    /// A panel for the selected module, or, without a head, for none. Begins the statistics anew.
    PanelForm(const char* name, const char* title, kavro::Session& session, kavro::Messages& messages,
              QWidget* parent);

    /// What a tick does: a transaction, or `Then` for each step.
    virtual void Tick() {}
    /// Marks what the panel shows as stale, in words and looks, or as fresh again. What drives outputs is not
    /// usable meanwhile.
    virtual void ShowStale(bool /*stale*/) {}

    /// Adds a step to the tick that runs.
    void Then(Step step) { steps_.push_back(std::move(step)); }
    /// Runs what the user, or the loading of the panel, asks for; after the present step when there is one.
    /// Nothing is done while the port is lost.
    void Operate(Step action);

    kavro::Session& Session() const { return session_; }
    kavro::Messages& Messages() const { return messages_; }
    /// Whether an outage of the port goes on.
    bool LineLost() const { return recovery_.Lost(); }
    int Index() const { return session_.SelectedModule; }
    const ModuleRecord& Record() const { return session_.ModuleTable[Index()]; }
    /// One transaction with the module; true when the reply, now in the line's `ReplyText`, is complete.
    bool Ask(const std::string& command);

    /// Shows the tags of the channels anew; called while a line file is open.
    virtual void ShowChannelTags() {}
    /// Whether a line file is open, and tags are shown.
    bool Tagged() const { return !session_.Tags.Path.empty(); }
    /// The tags of `count` channels of the module, from number `first` on.
    std::vector<TagAndNote> ChannelTags(int first, int count) const;

    /// Adds `ModuleTag` and `TagsBtn`, where a line file is open, and `ModuleName`, `Addr` and `Rev`, which
    /// stays empty until `ReadRevision`.
    void AddHead();
    /// The firmware revision, asked for now.
    virtual std::string Revision();
    /// Reads the firmware revision ("$AAF"), or, while the port is lost, as soon as it is back. What is too
    /// short to hold one is shown as nothing.
    void ReadRevision();
    /// The rows of the panel, top to bottom.
    QVBoxLayout& Rows() const { return *rows_; }
    /// Adds the statistics and `ExitBtn`, which gets the focus, and places the panel.
    void Finish();
    /// Starts `Timer1`. Without it a panel ticks during an outage only, until the port is open again.
    void StartPolling(int intervalMs = 100);

private:
    void AddTagLine();
    void TagsBtn_Click();
    void ShowTags();
    void AskRevision();
    void Next();
    bool Run(const Step& operation);
    void Tell(const std::string& failure);
    void ShowLost(bool lost);
    void ShowStatistics();

    kavro::Session& session_;
    kavro::Messages& messages_;
    LineRecovery recovery_;
    std::deque<Step> actions_; // come before the steps of the tick
    std::deque<Step> steps_;
    bool running_ = false;     // while a step or an action is on the stack
    bool telling_ = false;     // while the message of a failure is up
    bool due_ = false;         // a tick came due while one was running
    bool polling_ = false;     // `Timer1` runs outside an outage too
    bool revisionDue_ = false; // it could not be asked for yet
    bool closeAsked_ = false;  // the panel was to be closed while a message was up
    QTimer* timer1_ = nullptr;
    QTimer* next_ = nullptr;
    QVBoxLayout* rows_ = nullptr;
    QLabel* rev_ = nullptr;
    TagLabel* moduleTag_ = nullptr; // none where no tags are shown
    QLabel* lineState_ = nullptr;
    QLabel* statistics_ = nullptr;
};

} // namespace kavro
