#pragma once

#include "sim/simulated_module.h"

#include <array>
#include <cstdint>

namespace kavro {

/// One of the two counters of a counter module.
struct SimulatedCounter {
    bool Started = false;
    std::uint32_t MaximumCount = 0xFFFFFFFF;
    std::uint32_t InitialCount = 0;
    bool AlarmEnabled = false;
    std::uint32_t AlarmLimit = 0xFFFFFFFF;
};

/// Counter and frequency input: 8510. Type code 50 (hexadecimal) counts, 51 measures a frequency.
class CounterModule : public SimulatedModule {
public:
    using SimulatedModule::SimulatedModule;

    std::array<SimulatedCounter, 2> Counters{};
    bool LongGateTime = false;         ///< frequency gate time 1 s instead of 0.1 s
    int InputMode = 0;                 ///< 0 TTL, 1 photo isolated
    int GateMode = 2;                  ///< 0 low, 1 high, 2 disabled
    bool DigitalFilter = false;        ///< input filter on
    int HighWidth = 10, LowWidth = 10; ///< shortest signal at high and low level, microseconds, 4 digits
    int HighLevel = 24, LowLevel = 8;  ///< trigger levels, tenths of a volt, 2 digits

protected:
    std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment) override;
    int FormatByte() const override { return ChecksumBit() | (LongGateTime ? 0x04 : 0); }

private:
    /// "!AA" and what `text` makes of counter 0 and of counter 1.
    std::string OfBoth(std::string (*text)(const SimulatedCounter& counter)) const;
};

} // namespace kavro
