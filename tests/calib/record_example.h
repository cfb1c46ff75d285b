#pragma once

#include "calib/calibration_record.h"

namespace kavro {

/// The record that docs/formats.md shows.
inline CalibrationRecord ExampleRecord() {
    return {.Address = 5,
            .Model = "8250",
            .Firmware = "A2.5",
            .Tag = "TT-100",
            .Range = "+/-10 V",
            .Entries = {"J. Doe", "Calibrator 7, no. 1234", "2026-01-31", "23.5", "behind the pump", 0.1},
            .Started = "2026-03-02T14:05:09Z",
            .Ended = "2026-03-02T14:20:31Z",
            .FullScale = 10,
            .Unit = "V",
            .Points = {{"Offset", 0, "V", 0.012, 0.0, "module", true},
                       {"Span", 10, "V", 10.155, 10.002, "module", true}},
            .LeftAs = "In its own configuration."};
}

} // namespace kavro
