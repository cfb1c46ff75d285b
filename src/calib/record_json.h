#pragma once

#include "calib/calibration_record.h"

#include <string>

namespace kavro {

/// A record as JSON, with errors and results; `docs/formats.md` describes it. On several lines, indented by
/// `depth` steps, without an end of line; with a negative depth on one line, as a line file has it.
std::string RecordJson(const CalibrationRecord& record, int depth);

} // namespace kavro
