#pragma once

#include "map/module_record.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// What the present readings of a calibration are of.
enum class ReadingOf {
    Nothing,
    Input,        ///< channel 0 ("#AA" or "#AA0")
    ColdJunction, ///< its temperature ("$AA3")
    Terminals,    ///< of an output, at its terminals ("$AA8")
};

/// What is read in a step of a calibration, and what the readings are compared with.
struct CalibrationTarget {
    ReadingOf Reading = ReadingOf::Nothing;
    std::string What{}; ///< the point: "Offset"; empty: nothing is calibrated in this step
    std::optional<double>
        Signal{};         ///< in the unit of the readings; none when they cannot be compared with it
    std::string Unit{};   ///< of the readings, "V"; may be empty
    double FullScale = 0; ///< in that unit; 0 when it is not known
    double Applied = 0;   ///< the signal in the unit that the guide names it in
    std::string AppliedUnit{};
    std::string Remark{}; ///< why no error can be shown
    std::string Doubt{};  ///< why nothing that is stored here can be trusted; then there is no `Signal`
};

/// The reference signals of an input range, as the guide names them: "0 mV", "+10 V"; empty for a code
/// without.
struct ReferenceTexts {
    const char* Zero = "";
    const char* Span = "";
};
ReferenceTexts ReferenceOf(std::int16_t range);

/// The reading of channel 0 of a module with that record, compared with nothing.
CalibrationTarget InputTarget(const ModuleRecord& record);

/// The same for a point with the signal `reference`. Full scale is the range's, or where the module reads
/// ohms of a sensor, the span signal.
CalibrationTarget InputTarget(const ModuleRecord& record, const char* what, const std::string& reference);

/// The cold junction against a temperature in degrees. Full scale is that of a range in degrees; other ranges
/// give none.
CalibrationTarget ColdJunctionTarget(const ModuleRecord& record, std::optional<double> temperature);

} // namespace kavro
