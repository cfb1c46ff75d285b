#include "sim/counter_module.h"

#include "sim/readings.h"
#include "sim/wire_text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kavro {

namespace {

using Self = CounterModule;
using Counter = SimulatedCounter;

constexpr int CountingType = 0x50, FrequencyType = 0x51;
constexpr int PulsesPerSecond[] = {120, 45};
constexpr RangeShape FrequencySweep = {.Low = 200, .High = 9000}; // Hz
constexpr std::uint32_t ShortGateStep = 10; // Hz: a gate of 0.1 s sees whole pulses only

std::string_view Part(const Request& request, std::size_t start) {
    return std::string_view(request.Arguments).substr(start);
}

/// Reports a field of the module in that many decimal digits.
template <auto Field, int Digits>
std::string Tell(Self& module, const Request& /*request*/) {
    return module.Valid(WireDecimal(module.*Field, Digits));
}

/// Sets a field of the module to the decimal argument, 0 to `Highest`.
template <auto Field, int Highest>
std::string Keep(Self& module, const Request& request) {
    const int value = FromWireDecimal(request.Arguments);
    if (value > Highest)
        return module.Refusal();
    module.*Field = value;
    return module.Valid();
}

/// Sets a field of the counter that the first argument names to the others, hexadecimal, 0 to `Highest`.
template <auto Field, std::uint32_t Highest = std::numeric_limits<std::uint32_t>::max()>
std::string KeepOfCounter(Self& module, const Request& request) {
    const std::uint32_t number = FromWireHex(Part(request, 0).substr(0, 1));
    const std::uint32_t value = FromWireHex(Part(request, 1));
    if (number >= module.Counters.size() || value > Highest)
        return module.Refusal();
    module.Counters[number].*Field = value;
    return module.Valid();
}

template <bool Enabled>
std::string KeepAlarmEnabled(Self& module, const Request& request) {
    return KeepOfCounter<&Counter::AlarmEnabled>(module,
                                                 {request.Arguments + (Enabled ? "1" : "0"), request.Moment});
}

template <std::size_t Number>
std::string KeepAlarmLimit(Self& module, const Request& request) {
    module.Counters[Number].AlarmLimit = FromWireHex(request.Arguments);
    return module.Valid();
}

constexpr CommandEntry<Self> SettingCommands[] = {
    {"$AAB", Tell<&Self::InputMode, 1>},
    {"$AABd", Keep<&Self::InputMode, 1>},
    {"$AAA", Tell<&Self::GateMode, 1>},
    {"$AAAd", Keep<&Self::GateMode, 2>},
    {"$AA4", Tell<&Self::DigitalFilter, 1>},
    {"$AA4d", Keep<&Self::DigitalFilter, 1>},
    {"$AA0H", Tell<&Self::HighWidth, 4>},
    {"$AA0Hdddd", Keep<&Self::HighWidth, 9999>},
    {"$AA0L", Tell<&Self::LowWidth, 4>},
    {"$AA0Ldddd", Keep<&Self::LowWidth, 9999>},
    {"$AA1H", Tell<&Self::HighLevel, 2>},
    {"$AA1Hdd", Keep<&Self::HighLevel, 99>},
    {"$AA1L", Tell<&Self::LowLevel, 2>},
    {"$AA1Ldd", Keep<&Self::LowLevel, 99>},
    {"$AA5dd", KeepOfCounter<&Counter::Started, 1>},
    {"$AA3dhhhhhhhh", KeepOfCounter<&Counter::MaximumCount>},
    {"@AAPdhhhhhhhh", KeepOfCounter<&Counter::InitialCount>},
    {"@AAEAd", KeepAlarmEnabled<true>},
    {"@AADAd", KeepAlarmEnabled<false>},
    {"@AAPAhhhhhhhh", KeepAlarmLimit<0>},
    {"@AASAhhhhhhhh", KeepAlarmLimit<1>},
};

} // namespace

void SimulatedCounter::CountUntil(std::int64_t moment, int pulsesPerSecond) {
    if (!Started) {
        CountedFrom.reset();
        Pulses = 0;
        return;
    }
    if (!CountedFrom)
        CountedFrom = moment;
    const std::int64_t before = std::exchange(Pulses, (moment - *CountedFrom) * pulsesPerSecond / 1'000'000);
    const std::int64_t target = Count + (Pulses - before);
    if (target > MaximumCount && Pulses > before) {
        Overflow = true;
        const std::int64_t first = InitialCount;
        const std::int64_t cycle = std::max<std::int64_t>(MaximumCount - first + 1, 1);
        // A count that stands above a lowered maximum goes to the initial count at its next pulse.
        const std::int64_t wrapped = target - std::max(Count, MaximumCount) - 1;
        Count = static_cast<std::uint32_t>(first + wrapped % cycle);
    } else {
        Count = static_cast<std::uint32_t>(target);
    }
}

void SimulatedCounter::Clear() {
    Count = InitialCount;
    Overflow = false;
}

void SimulatedCounter::Restart() {
    Clear();
    CountedFrom.reset();
    Pulses = 0;
}

std::optional<std::string> CounterModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    static constexpr CommandEntry<Self> Commands[] = {
        {"#AAd", [](Self& module, const Request& request) { return module.ReadInput(request); }},
        {"$AA6d", [](Self& module, const Request& request) { return module.Clear(request); }},
        {"@AADI", [](Self& module, const Request&) { return module.ReadAlarms(); }},
        {"$AA3", [](Self& module,
                    const Request&) { return module.Valid(WireHex(module.Counters[0].MaximumCount, 8)); }},
        {"@AAG", [](Self& module,
                    const Request&) { return module.Valid(WireHex(module.Counters[1].MaximumCount, 8)); }},
        {"$AA5",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireDecimal(counter.Started, 1); });
         }},
        {"$AA7",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireDecimal(counter.Overflow, 1); });
         }},
        {"@AARP",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireHex(counter.InitialCount, 8); });
         }},
        {"@AARA",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireHex(counter.AlarmLimit, 8); });
         }},
    };
    CountUntil(moment);
    auto reply = AnswerFrom(Commands, *this, command, moment);
    if (!reply)
        reply = AnswerFrom(SettingCommands, *this, command, moment);
    CountUntil(moment); // a counter started just now counts from now on
    return reply;
}

void CounterModule::Forget() {
    for (SimulatedCounter& counter : Counters)
        counter.Restart();
}

bool CounterModule::HasTypeCode(int typeCode) const {
    return typeCode == CountingType || typeCode == FrequencyType;
}

void CounterModule::CountUntil(std::int64_t moment) {
    for (std::size_t number = 0; number < Counters.size(); ++number)
        Counters[number].CountUntil(moment, PulsesPerSecond[number]);
}

std::uint32_t CounterModule::Frequency(int input, std::int64_t moment) const {
    const auto hertz =
        static_cast<std::uint32_t>(MovingValue(FrequencySweep, moment, Settings.Address + input));
    return LongGateTime ? hertz : hertz - hertz % ShortGateStep;
}

std::string CounterModule::ReadInput(const Request& request) const {
    const int input = FromWireDecimal(request.Arguments);
    if (input > 1)
        return Refusal();
    const std::uint32_t value = Settings.TypeCode == FrequencyType
                                    ? Frequency(input, request.Moment)
                                    : Counters[static_cast<std::size_t>(input)].Count;
    return Data(WireHex(value, 8));
}

std::string CounterModule::ReadAlarms() const {
    const unsigned active = (Counters[0].AlarmActive() ? 1U : 0U) | (Counters[1].AlarmActive() ? 2U : 0U);
    return OfBoth([](const Counter& counter) { return WireDecimal(counter.AlarmEnabled, 1); }) +
           WireHex(active, 2);
}

std::string CounterModule::Clear(const Request& request) {
    const std::uint32_t number = FromWireHex(request.Arguments);
    if (number >= Counters.size())
        return Refusal();
    Counters[number].Clear();
    return Valid();
}

std::string CounterModule::OfBoth(std::string (*text)(const SimulatedCounter& counter)) const {
    return Valid(text(Counters[0]) + text(Counters[1]));
}

} // namespace kavro
