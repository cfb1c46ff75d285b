#include "sim/counter_module.h"

#include "sim/wire_text.h"

namespace kavro {

std::optional<std::string> CounterModule::AnswerOwn(std::string_view command, std::int64_t moment) {
    using Self = CounterModule;
    using Counter = SimulatedCounter;
    static constexpr CommandEntry<Self> Commands[] = {
        {"$AAB", [](Self& module, const Request&) { return module.Valid(WireDecimal(module.InputMode, 1)); }},
        {"$AAA", [](Self& module, const Request&) { return module.Valid(WireDecimal(module.GateMode, 1)); }},
        {"$AA4",
         [](Self& module, const Request&) { return module.Valid(WireDecimal(module.DigitalFilter, 1)); }},
        {"$AA3", [](Self& module,
                    const Request&) { return module.Valid(WireHex(module.Counters[0].MaximumCount, 8)); }},
        {"@AAG", [](Self& module,
                    const Request&) { return module.Valid(WireHex(module.Counters[1].MaximumCount, 8)); }},
        {"$AA5",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireDecimal(counter.Started, 1); });
         }},
        {"@AADI",
         [](Self& module, const Request&) {
             return module.OfBoth(
                 [](const Counter& counter) { return WireDecimal(counter.AlarmEnabled, 1); });
         }},
        {"@AARP",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireHex(counter.InitialCount, 8); });
         }},
        {"@AARA",
         [](Self& module, const Request&) {
             return module.OfBoth([](const Counter& counter) { return WireHex(counter.AlarmLimit, 8); });
         }},
        {"$AA0H",
         [](Self& module, const Request&) { return module.Valid(WireDecimal(module.HighWidth, 4)); }},
        {"$AA0L", [](Self& module, const Request&) { return module.Valid(WireDecimal(module.LowWidth, 4)); }},
        {"$AA1H",
         [](Self& module, const Request&) { return module.Valid(WireDecimal(module.HighLevel, 2)); }},
        {"$AA1L", [](Self& module, const Request&) { return module.Valid(WireDecimal(module.LowLevel, 2)); }},
    };
    return AnswerFrom(Commands, *this, command, moment);
}

std::string CounterModule::OfBoth(std::string (*text)(const SimulatedCounter& counter)) const {
    return Valid(text(Counters[0]) + text(Counters[1]));
}

} // namespace kavro
