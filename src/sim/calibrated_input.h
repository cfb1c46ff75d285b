#pragma once

#include "sim/analog_module.h"

#include <optional>

namespace kavro {

/// What all analog input modules share: readings with errors that a calibration takes away, and of some
/// models the temperature of the cold junction.
class CalibratedInput : public AnalogModule {
public:
    using AnalogModule::AnalogModule;

    double OffsetError = 0;           ///< added to every reading, percent of full scale
    double SpanError = 0;             ///< added to every reading, percent of its signal
    double ColdJunctionError = 0;     ///< of the sensor at the cold junction, degrees
    int ColdJunctionCorrection = 0;   ///< what a calibration sets against it, counts of 0.0153 degrees
    std::optional<double> HeldSignal; ///< signal at every input in the range's unit; nothing: it moves

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;

    /// What the module measures at a channel, in the range's unit. It ends at the ends of the range.
    double Reading(int channel, std::int64_t moment) const;
    /// ">" and `value` in the module's range and data format.
    std::string ReadingReply(double value) const;

private:
    double ColdJunctionShift() const;
    std::string CorrectColdJunction(const Request& request);
};

} // namespace kavro
