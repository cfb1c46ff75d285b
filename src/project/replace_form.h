#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "project/replacement.h"
#include "project/work_in_window_form.h"

#include <QDialog>
#include <QTimer>

#include <functional>
#include <optional>
#include <string>

class QBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QStackedWidget;

namespace kavro {

class DifferenceTable;
class SavedModuleTable;

/// Guides through the replacement of a dead module by a new one: the module of the line file, the new one in
/// its initialisation state, the settings to come, and how they are found again at its place. The new module
/// is looked for once a second; between two looks the port is free.
///
/// One work at a time. Stop and the close button end it before its next command; what state the new module is
/// in stands at the foot, and in the session's note when the window goes.
class ReplaceForm : public QDialog {
public:
    ReplaceForm(Session& session, Messages& messages, QWidget* parent);

    void reject() override; // Exit, Escape and the close button

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum Step { Choose, Connect, Settings, PowerUp, Result };
    using Operation = void (ReplaceForm::*)();

    // Shows a failure, but of many looks only the first one in a row.
    class Failures : public Messages {
    public:
        explicit Failures(ReplaceForm& form) : form_(form) {}
        void Show(const std::string& text, const std::string& title) override;

    private:
        ReplaceForm& form_;
    };

    void Build();
    QBoxLayout* BuildFile();
    QStackedWidget* BuildStage();
    QBoxLayout* BuildProgress();
    QBoxLayout* BuildButtons();
    QPushButton* Button(const char* name, const char* caption, Operation operation);

    void OpenBtn_Click();
    void SilentBtn_Click();
    void StopBtn_Click();
    void BackBtn_Click();
    void NextBtn_Click();

    void Load(const std::string& path);
    void Operate(Operation operation);
    bool Work(const std::function<void(const LineWork& work)>& work);
    void Look();
    void LookForNew();
    void LookAtPlace();
    void Go(Step step);

    void TakeChosen();
    void AskForSettings();
    void Write();
    void ShowResult(const ModuleComparison& comparison);
    void Leave();

    void ShowFoot(const std::string& text);
    void ShowNew();
    void ShowGuide();
    void ShowUsable();

    kavro::Session& session_;
    kavro::Messages& messages_;
    Failures failures_{*this};
    WorkInWindow work_;
    QTimer timer_{this}; // to the next look
    Step step_ = Choose;
    ReplacementStage stage_ = ReplacementStage::Untouched;
    LineFile file_;
    SavedModule saved_;
    NewModule found_;
    int looks_ = 0; // at its place, that found the module
    std::int64_t waitingSince_ = 0;
    bool looking_ = false;     // the work that runs is a look
    bool failureTold_ = false; // of the looks
    bool shown_ = false;
    bool closing_ = false;        // asked for while work ran
    Operation pending_ = nullptr; // asked for while a look ran

    QLabel* fileName_ = nullptr;
    QLabel* stepNo_ = nullptr;
    QLabel* guide_ = nullptr;
    QLabel* status_ = nullptr; // of the looks
    QLabel* foot_ = nullptr;
    QStackedWidget* stack_ = nullptr;
    SavedModuleTable* modules_ = nullptr;
    DifferenceTable* settings_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton *open_ = nullptr, *silent_ = nullptr, *stop_ = nullptr;
    QPushButton *back_ = nullptr, *next_ = nullptr;
};

} // namespace kavro
