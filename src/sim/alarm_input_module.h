#pragma once

#include "sim/calibrated_input.h"

#include <optional>

namespace kavro {

/// Analog input with one channel, alarm limits, two digital outputs and one digital input.
///
/// While the alarm is enabled it drives the outputs, by the reading at each command that the module hears:
/// output 0 is on when the reading is at or below the low limit, output 1 at or above the high one. A latched
/// alarm keeps them on until it is cleared.
class AlarmInputModule : public CalibratedInput {
public:
    explicit AlarmInputModule(ModuleSettings settings);

    double LowLimit, HighLimit;         ///< alarm limits in the range's unit
    int AlarmMode = 0;                  ///< 0 disabled, 1 momentary, 2 latched
    unsigned DigitalOutputs = 0;        ///< one bit per output
    std::optional<unsigned> HeldInputs; ///< levels of the inputs; nothing: they change over time
    int SignedSetting = 123;            ///< 8240 only: what "$AA3" reports
    unsigned MaskSetting = 0x05;        ///< 8240 only: what "$AA5" reports

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    void Forget() override { DigitalOutputs = 0; }

private:
    void DriveOutputs(std::int64_t moment);
    std::string LimitText(double limit) const;
    std::string SetLimit(double& limit, const Request& request) const;
    std::string SetAlarmMode(int mode);
    std::string ClearAlarm();
    std::string SetOutputs(const Request& request);
    std::string ReadStates(const Request& request) const;
};

} // namespace kavro
