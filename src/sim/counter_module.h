#pragma once

#include "sim/simulated_module.h"

#include <array>
#include <cstdint>
#include <optional>

namespace kavro {

/// One of the two counters of a counter module.
struct SimulatedCounter {
    bool Started = false;
    std::uint32_t MaximumCount = 0xFFFFFFFF;
    std::uint32_t InitialCount = 0;
    bool AlarmEnabled = false;
    std::uint32_t AlarmLimit = 0xFFFFFFFF;
    std::uint32_t Count = 0; ///< behind the maximum count comes the initial count
    bool Overflow = false;   ///< the maximum count was passed

    std::optional<std::int64_t> CountedFrom = std::nullopt; ///< moment of the start; nothing while stopped
    std::int64_t Pulses = 0;                                ///< counted since then

    /// Counts what has come in by `moment` (microseconds) at that many pulses a second.
    void CountUntil(std::int64_t moment, int pulsesPerSecond);

    /// Back to the initial count, without overflow.
    void Clear();

    /// Goes back there and, where it is started, counts from the next command on.
    void Restart();

    /// Whether the alarm is enabled and the count has reached its limit.
    bool AlarmActive() const { return AlarmEnabled && Count >= AlarmLimit; }
};

/// Counter and frequency input: 8510. Type code 50 (hexadecimal) counts, 51 measures a frequency. A counter
/// that was started by setting `Started` counts from the first command on.
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
    void Forget() override;
    bool HasTypeCode(int typeCode) const override;
    bool HasFormat(int bits) const override { return (bits & ~LongGateBit) == 0; }
    void KeepFormat(int bits) override { LongGateTime = bits != 0; }
    int FormatByte() const override { return ChecksumBit() | (LongGateTime ? LongGateBit : 0); }

private:
    static constexpr int LongGateBit = 0x04; // of the format byte

    void CountUntil(std::int64_t moment);
    std::uint32_t Frequency(int input, std::int64_t moment) const;
    std::string ReadInput(const Request& request) const;
    std::string ReadAlarms() const;
    std::string Clear(const Request& request);
    /// "!AA" and what `text` makes of counter 0 and of counter 1.
    std::string OfBoth(std::string (*text)(const SimulatedCounter& counter)) const;
};

} // namespace kavro
