#pragma once

#include "project/work_in_window_form.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QBoxLayout;
class QLabel;
class QLayout;
class QProgressBar;
class QPushButton;

namespace kavro {

/// A window for work on all modules of a line: how far it is, Stop, and what it told. One operation at a
/// time; Stop, Escape and the close button end its work before the next command, and the window goes when the
/// operation has ended.
class LineWorkForm : public QDialog {
public:
    void reject() override; // Escape and the close button

protected:
    LineWorkForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent, const char* name,
                 const QString& title);

    /// How far the work is, and the button that stops it.
    QLayout* BuildProgress();
    /// A row of buttons, the one that leaves the window behind them.
    QBoxLayout* BuildButtons(const std::vector<QPushButton*>& buttons);
    /// A button that runs `clicked`, guarded.
    QPushButton* Button(const char* name, const char* text, std::function<void()> clicked);

    /// Called once, when the window has been drawn.
    virtual void Begun() = 0;
    /// Makes the controls usable as an operation runs or does not.
    virtual void ShowRunning(bool running) = 0;

    /// Runs an operation, guarded, unless one is running.
    void Operate(const std::function<void()>& operation);
    /// Runs the work of an operation; a failure is told.
    WorkEnd Work(const std::function<void(const LineWork& work)>& work);

    void showEvent(QShowEvent* event) override;

    bool Running() const { return running_; }
    bool Closing() const { return closing_; }

    kavro::Session& session_;
    kavro::Messages& messages_;

private:
    void ShowProgress(const std::string& doing, int done, int total);
    void ShowStop(bool usable);

    WorkInWindow work_;
    bool running_ = false;
    bool closing_ = false; // asked for while an operation ran
    bool begun_ = false;
    std::int64_t stepBegan_ = 0; // us
    QLabel* stage_ = nullptr;
    QLabel* timeLeft_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* stop_ = nullptr;
};

} // namespace kavro
