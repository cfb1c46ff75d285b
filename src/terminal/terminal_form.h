#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "terminal/command_runner.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QHBoxLayout;
class QLabel;
class QProgressBar;

namespace kavro {

class BatchPanel;
class CommandState;
class ConsoleView;
class LogPanel;

/// The terminal: typed commands and their replies, a repeated command, the log file and batch files. One
/// operation at a time; closing the form while one is going on ends it after the command being awaited, and
/// then closes.
class TerminalForm : public QDialog {
public:
    /// `showTraffic` brings the traffic window up, at any time, and returns at once.
    TerminalForm(
        Session& session, Messages& messages, QWidget* parent, std::function<void()> showTraffic = [] {});

    void reject() override; // Exit, Escape and the close button

private:
    CommandEvents Events();
    void Build();
    QHBoxLayout* BuildPortSettings();
    QHBoxLayout* BuildCommandRow();
    QHBoxLayout* BuildFoot();

    void Operate(const std::function<void()>& operation);
    void CmdText_KeyPress();
    void RepeatCmdBtn_Click();
    void ShowProgress(const RunProgress& progress);

    Session& session_;
    Messages& messages_;
    CommandRunner runner_;
    std::function<void()> showTraffic_;
    bool operating_ = false;  // while an operation runs; nothing can start a second one underneath it
    bool closeAsked_ = false; // the form was to be closed meanwhile
    ConsoleView* console_ = nullptr;
    CommandState* state_ = nullptr;
    LogPanel* log_ = nullptr;
    BatchPanel* batch_ = nullptr;
    QCheckBox* checkSumEnable_ = nullptr;
    QLabel* progress_ = nullptr;
    QProgressBar* progressBar_ = nullptr;
};

} // namespace kavro
