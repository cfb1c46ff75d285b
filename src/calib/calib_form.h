#pragma once

#include "calib/calibration_view.h"
#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

#include <functional>

class QFormLayout;
class QGridLayout;
class QLabel;
class QPushButton;

namespace kavro {

/// What the calibration dialogs share: the module, the step and its guide text, and the buttons to walk the
/// steps, with a line at the foot that says what the module answered. A dialog adds its own controls to the
/// stage below the guide text and shows its steps in `ShowView`.
///
/// One operation at a time, under the busy pointer. Closing the dialog meanwhile takes effect when the
/// operation has ended.
class CalibForm : public QDialog {
public:
    void reject() override; // Exit, Escape and the close button

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

    /// Clicks made while an operation blocked the window.
    enum class Clicks { Drop, Keep };

    /// A dialog for the selected module, of `steps` steps.
    CalibForm(const char* name, const char* title, int steps, kavro::Session& session,
              kavro::Messages& messages, QWidget* parent);

    /// Shows the present step; returns the control that it goes on with.
    virtual QWidget& ShowView() = 0;
    /// What is to be done before the dialog closes; false when it stays.
    virtual bool Leave() { return true; }

    /// Runs a guarded operation and shows what it led to. Closes the dialog when it returns true.
    void Operate(const std::function<bool()>& operation, Clicks clicks = Clicks::Drop);
    /// Lets events run for that long, with every control disabled.
    void Wait(int milliseconds);

    kavro::Session& Session() const { return session_; }
    kavro::Messages& Messages() const { return messages_; }
    /// The entry being calibrated.
    int Index() const { return index_; }

    /// The rows above the step, and the place below it, with `GuideText` in its first cell. What shares a
    /// cell is shown in turn and keeps its place while hidden, so that the window does not jump.
    QFormLayout& Rows() const { return *rows_; }
    void AddToStage(QWidget& control, int row);
    /// A button whose accelerator stands in `caption`.
    static QPushButton* Button(const char* name, const char* caption);
    /// Adds the buttons below the stage, with what Back and Next do, and places the dialog.
    void Finish(std::function<void()> back, std::function<bool()> next);
    /// Shows what every dialog has; `foot` as `ShowFoot`.
    void ShowCommon(const CalibrationView& view, const std::string& foot);
    /// Shows, at the foot of the dialog, what the module said and what is to be known before going on.
    void ShowFoot(const std::string& foot);
    QPushButton& NextBtn() const { return *next_; }

private:
    void Refresh();

    kavro::Session& session_;
    kavro::Messages& messages_;
    const int index_;
    QFormLayout* rows_ = nullptr;
    QGridLayout* stage_ = nullptr;
    QLabel* stepNo_ = nullptr;
    QLabel* guideText_ = nullptr;
    QLabel* foot_ = nullptr;
    QPushButton* back_ = nullptr;
    QPushButton* next_ = nullptr;
    bool operating_ = false;  // nothing can start a second operation underneath one
    bool closeAsked_ = false; // the dialog was to be closed meanwhile
};

} // namespace kavro
