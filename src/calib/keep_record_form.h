#pragma once

#include "calib/calibration_record.h"
#include "link/messages.h"
#include "map/session.h"

#include <string>

class QWidget;

namespace kavro {

/// Saves the record of a calibration that has ended, as PDF and JSON, and adds it to the module's history
/// where the open line file has that module. When it cannot be saved the user may try again, choose another
/// folder or go without; a program that is ending asks nobody and saves it in the home folder, or else in
/// that for temporary files. What there is to tell is added to `Session.Note`. Throws nothing. Shows windows:
/// to be called last, when the dialog of the calibration is about to close.
void KeepRecord(Session& session, Messages& messages, const std::string& folder,
                const CalibrationRecord& record, QWidget* parent);

} // namespace kavro
