#pragma once

#include "sim/simulated_module.h"

namespace kavro {

/// Analog input with one channel, alarm limits and digital inputs and outputs: 8210, 8220, 8240.
class AlarmInputModule : public SimulatedModule {
public:
    explicit AlarmInputModule(ModuleSettings settings);

    double LowLimit, HighLimit;  ///< alarm limits in the range's unit
    int AlarmMode = 0;           ///< 0 disabled, 1 momentary, 2 latched
    unsigned DigitalOutputs = 0; ///< one bit per output
    unsigned DigitalInputs = 0;  ///< one bit per input
    int SignedSetting = 123;     ///< 8240 only: what "$AA3" reports
    unsigned MaskSetting = 0x05; ///< 8240 only: what "$AA5" reports

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    int FormatByte() const override { return ChecksumBit() | Settings.DataFormat; }

private:
    std::string Read(const Request& request) const;
    std::string LimitText(double limit) const;
};

} // namespace kavro
