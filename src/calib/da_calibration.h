#pragma once

#include "calib/calibration_view.h"
#include "map/session.h"

#include <string>

namespace kavro {

/// What the dialog shows.
struct DaCalibrationView : CalibrationView {
    bool TrimShown = false; ///< `TrimUpBtn` and `TrimDownBtn`
};

/// The calibration of an analog output module in five steps. The module runs in the range 0 to 20 mA with
/// engineering units from `SetUp` until `Restore` gives it its own configuration back. Replies are read but
/// not tested.
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

    /// Sets the module up for calibration.
    void SetUp();

    const DaCalibrationView& View() const { return view_; }

    void BackBtn_Click();
    /// The next step. True at step 5 once the calibration is complete: the module is to be restored and the
    /// dialog to be closed.
    bool NextBtn_Click();
    void TrimUpBtn_Click() { Trim("301"); }
    void TrimDownBtn_Click() { Trim("3FF"); }

    /// Whether the module still has to get its own configuration back.
    bool MustRestore() const { return !savedConfig_.empty(); }
    /// Gives it back; does nothing when there is nothing to give back.
    void Restore();

private:
    void ShowStep();
    bool TakeUp();
    void Trim(const char* code);
    std::string Configure(const std::string& config) const;
    void Exchange(const std::string& command, int timeoutMs);
    void Exchange(char lead, const std::string& code);
    std::string WhatToRestore() const;

    Session& session_;
    const int index_;
    DaCalibrationView view_;
    std::string savedConfig_; // type code, baud code and format byte, two hexadecimal digits each
    bool interrupted_ = false;
};

} // namespace kavro
