#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// A point of a calibration: a signal, and what was measured of it before and after.
struct CalibrationPoint {
    std::string What;  ///< "Offset", "Span", "Cold junction", "4 mA", "20 mA"
    double Signal = 0; ///< applied, or for an output asked for, in `Unit`
    std::string Unit{};
    std::optional<double> AsFound{}, AsLeft{}; ///< in `Unit`; none when it was not measured
    std::string Source{}; ///< who measured: "module", "meter", or of each "meter / module" (found / left)
    std::optional<bool> Stored = false; ///< by the module; none when it is not known whether it has done it
    double Step = 0;        ///< what the last digit of a measured value stands for, in `Unit`; 0: not known
    bool Adjusted = true;   ///< else it was only looked at
    bool Comparable = true; ///< what can be measured there can be compared with the signal
};

/// What the engineer enters for a record; texts are UTF-8 and may be empty.
struct CalibrationEntries {
    std::string Operator{};
    std::string Instrument{};    ///< the reference instrument
    std::string InstrumentDue{}; ///< when it is to be calibrated itself, local date: "2027-03-31"
    std::string Ambient{};       ///< temperature in degrees C, a number with a point: "23.5"
    std::string Note{};
    double TolerancePercent = 0.1; ///< of full scale, above 0
};

/// What is kept of a calibration.
struct CalibrationRecord {
    std::int16_t Address = 0; ///< of the module, 0 to 255
    std::string Model{};      ///< without blanks at its end: "8250"
    std::string Firmware{};   ///< empty when it was not told
    std::string Tag{};        ///< of the module, empty when it has none
    std::string Range{};      ///< in words: "+/-10 V"
    CalibrationEntries Entries{};
    std::string Started{}, Ended{}; ///< UTC: "2026-03-02T14:05:09Z"
    double FullScale = 0;           ///< of the range, in `Unit`; 0 when it is not known
    std::string Unit{};             ///< of the range
    std::vector<CalibrationPoint> Points{};
    bool Aborted = false; ///< it was left before it was complete
    std::string LeftAs{}; ///< a sentence: the state that the module was left in
};

/// How a point or a whole calibration came out.
enum class CalibrationResult { Pass, Fail, NotJudged, Aborted };

/// What was measured less the signal, in the unit of the point, without the noise of binary numbers; none
/// without a measured value.
std::optional<double> ErrorOf(const CalibrationPoint& point, const std::optional<double>& measured);

/// An error at that point in percent of full scale; none without an error, and where the full scale is not
/// known or has another unit than the point, as for a cold junction.
std::optional<double> PercentOfFullScale(const CalibrationRecord& record, const CalibrationPoint& point,
                                         const std::optional<double>& error);

/// The point as left against the tolerance. Fails unless it was stored, and when it was not measured as left;
/// is not judged when it was only looked at, cannot be compared, or its error has no percentage.
CalibrationResult ResultOf(const CalibrationRecord& record, const CalibrationPoint& point);

/// The whole: aborted when it was, or else fails with any point that fails, and passes when no point fails
/// and at least one passes.
CalibrationResult ResultOf(const CalibrationRecord& record);

/// "pass", "fail", "not judged", "aborted".
std::string ShownResult(CalibrationResult result);

/// A name for the files of a record, without folder and suffix: tag or model, address (hexadecimal) and date,
/// "TT-101_05_2026-11-22". What a file name may not have on any system is replaced by "-".
std::string RecordName(const CalibrationRecord& record, const std::string& date);

} // namespace kavro
