#pragma once

#include "calib/calibration_view.h"
#include "calib/calibration_watch.h"
#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

#include <functional>

class QCheckBox;
class QFormLayout;
class QGridLayout;
class QLabel;
class QPushButton;
class QTimer;

namespace kavro {

class ReadingsPanel;
class RecordBox;

/// What the calibration dialogs share: the module, the step and its guide text, and the buttons to walk the
/// steps, with a line at the foot that says what the module answered. A dialog adds its own controls to the
/// stage below the guide text and shows its steps in `ShowView`.
///
/// One operation at a time, under the busy pointer. Closing the dialog meanwhile takes effect when the
/// operation has ended.
///
/// With "Show readings" a timer reads once a tick what is being calibrated, between operations and never
/// within one; with "Keep a record" closing keeps what was found and left.
class CalibForm : public QDialog {
public:
    void reject() override; // Exit, Escape and the close button
    /// Reads once, when readings are shown and no operation goes on.
    void Timer1_Timer();

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

    /// What reads and keeps the readings, what it shows, and one reading.
    virtual CalibrationWatch& Watch() = 0;
    virtual ReadingView Readings() const = 0;
    virtual void Poll() { Watch().Poll(); }
    /// What is kept of the calibration; what the user entered is added.
    virtual CalibrationRecord Record() const = 0;

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
    /// The panel of readings, from `Finish` on.
    ReadingsPanel& Panel() const { return *panel_; }
    bool RecordWanted() const;

private:
    void Refresh();
    void BuildReadings();
    void ReadingsBox_Changed();
    void ShowReadings();
    void AwaitLeft();
    void Close();

    kavro::Session& session_;
    kavro::Messages& messages_;
    const int index_;
    QFormLayout* rows_ = nullptr;
    QGridLayout* stage_ = nullptr;
    QLabel* stepNo_ = nullptr;
    QLabel* guideText_ = nullptr;
    QLabel* foot_ = nullptr;
    QCheckBox* readingsBox_ = nullptr;
    RecordBox* record_ = nullptr;
    ReadingsPanel* panel_ = nullptr;
    QLabel* reversible_ = nullptr;
    QTimer* timer1_ = nullptr;
    QPushButton* back_ = nullptr;
    QPushButton* next_ = nullptr;
    std::int16_t step_ = 1;   // shown
    bool watched_ = false;    // readings have been shown since the dialog was opened
    bool begun_ = false;      // a step beyond the first has been shown
    bool operating_ = false;  // nothing can start a second operation underneath one
    bool closeAsked_ = false; // the dialog was to be closed meanwhile
};

} // namespace kavro
