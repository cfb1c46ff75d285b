#pragma once

#include "calib/calibration_commands.h"
#include "calib/calibration_view.h"
#include "calib/calibration_watch.h"
#include "map/session.h"

#include <string>

namespace kavro {

/// What the dialog shows.
struct DaCalibrationView : CalibrationView {
    bool TrimShown = false; ///< `TrimUpBtn` and `TrimDownBtn`
};

/// The calibration of an analog output module in five steps. The module runs in the range 0 to 20 mA with
/// engineering units from `SetUp` until `Restore` gives it its own configuration back. Replies decide nothing
/// but what is told of them.
///
/// Every function throws `RuntimeFailure` when the port fails, with the configuration that is still to be
/// restored in its description. What was interrupted is then taken up by the next button: the module is set
/// up again and, unless the button was Back, put to the output of the step that is shown, if it has one, and
/// nothing more, so that nothing is ever stored at an output that nobody has seen.
class DaCalibration {
public:
    /// Step 1 for entry `index`. Reads the module's configuration; without a good reply the module is left in
    /// its own, and nothing is restored.
    DaCalibration(Session& session, int index);

    /// Sets the module up for calibration, unless its configuration could not be read.
    void SetUp();

    const DaCalibrationView& View() const { return view_; }
    /// What the module said last, behind a warning when it is not known to be set up for calibration.
    std::string Foot() const;
    /// What it said last alone.
    const std::string& Told() const { return told_; }

    void BackBtn_Click();
    /// The next step. True at step 5 once the calibration is complete: the module is to be restored and the
    /// dialog to be closed.
    bool NextBtn_Click();
    void TrimUpBtn_Click() { Trim("301", "Trim Up", 1); }
    void TrimDownBtn_Click() { Trim("3FF", "Trim Down", -1); }

    /// What a milliammeter shows at the present output, mA, as typed with the decimal separator of the user's
    /// locale; empty when nothing was typed. Used up by the next trim or store, which sends nothing when it
    /// is not a number.
    std::string MeterInput;

    /// What is read meanwhile, at the terminals; nothing unless it is switched on.
    CalibrationWatch& Watch() { return watch_; }
    ReadingView Readings() const;
    /// One reading; a port that fails then is an interruption as everywhere else.
    void Poll();
    /// What has been done so far: aborted unless the last step was left by Done.
    CalibrationRecord Record() const;

    /// Whether the module still has to get its own configuration back.
    bool MustRestore() const { return !savedConfig_.empty(); }
    /// Gives it back after Done; does nothing when there is nothing to give back. What the module says to
    /// that is added to what it said last.
    void Restore() { GiveBack("restored"); }
    /// Gives it back before; nothing is told when that went well.
    void ExitBtn_Click();

private:
    void ShowStep();
    bool TakeUp();
    void Trim(const char* code, const char* name, int step);
    bool Store(const char* code, const char* what);
    CalibrationTarget Target() const;
    const char* DoubtText() const;
    std::string ReplacesText() const;
    std::string LeftAsText() const;
    void SetOutput(const char* current, const char* what);
    bool TakeMeter();
    std::string Configuring(const std::string& config) const;
    std::string RestoringCommand() const;
    Answer Ask(const Question& question, int timeoutMs);
    Answer Ask(char lead, const std::string& tail, const std::string& what, const std::string& done);
    void GiveBack(const char* done);
    std::string WhatToRestore() const;

    Session& session_;
    const int index_;
    DaCalibrationView view_;
    std::string savedConfig_; // type code, baud code and format byte, two hexadecimal digits each
    bool interrupted_ = false;
    bool configRead_ = false; // by a reply that is the module's own without doubt
    bool setUp_ = false;      // and it took its set-up for calibration
    bool outputSet_ = false;  // it took the last command that set its output
    std::string told_;        // of the last button
    CalibrationWatch watch_;
    int trims_ = 0;         // steps up less steps down, since the output was set
    bool done_ = false;     // by Done
    std::string givenBack_; // what came of the own configuration, once it was given back
};

} // namespace kavro
