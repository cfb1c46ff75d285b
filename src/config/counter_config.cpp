#include "config/counter_config.h"

#include "link/codes.h"
#include "link/number_text.h"
#include "link/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kavro {

namespace {

using Values = CounterSettings;

constexpr double HighestCount = std::numeric_limits<std::uint32_t>::max();
constexpr double LowestCount = std::numeric_limits<std::int32_t>::min();
constexpr std::int16_t GateTimeBit = 4;
constexpr std::size_t WidthDigits = 4;

// One setting and the command that writes it.
struct CounterCommand {
    char Lead;
    const char* Code; // behind the address
    std::string (*Text)(const CounterConfig& config);
    bool (*Equal)(const Values& kept, const Values& wanted);
    void (*Keep)(Values& kept, const Values& wanted);
    const char* Failure;
};

// The field of the settings, or of one counter where each counter has its own.
template <auto Field, std::size_t Counter>
auto& At(auto& values) {
    if constexpr (requires { (values.*Field)[Counter]; })
        return (values.*Field)[Counter];
    else
        return values.*Field;
}

std::string SentText(std::int16_t digit) {
    return std::to_string(digit);
}

// 32 bits, of which the upper half stands for the negative numbers.
std::string SentText(double count) {
    const auto whole = static_cast<std::int64_t>(count);
    return ToHex(static_cast<std::int32_t>(static_cast<std::uint32_t>(whole)), 8);
}

double Compared(double value) {
    return std::trunc(value);
}

template <auto Field, std::size_t Counter>
std::string FieldText(const CounterConfig& config) {
    return SentText(At<Field, Counter>(config.Values));
}

template <auto Field, std::size_t Counter = 0>
constexpr CounterCommand Command(char lead, const char* code, const char* failure,
                                 std::string (*text)(const CounterConfig&) = FieldText<Field, Counter>) {
    return {lead,
            code,
            text,
            [](const Values& kept, const Values& wanted) {
                return Compared(At<Field, Counter>(kept)) == Compared(At<Field, Counter>(wanted));
            },
            [](Values& kept, const Values& wanted) { At<Field, Counter>(kept) = At<Field, Counter>(wanted); },
            failure};
}

std::string LevelText(std::int16_t tenths) {
    return (tenths < 10 ? "0" : "") + std::to_string(tenths);
}

// Here the value chooses the code, and the counter's digit stands behind it.
template <std::size_t Counter>
std::string AlarmEnableText(const CounterConfig& config) {
    return (config.Values.AlarmSetting[Counter] == 1 ? "EA" : "DA") + std::to_string(Counter);
}

constexpr const char* StartFailed = "Start/Stop Counter command failed.";
constexpr const char* MaximumFailed = "Max Counter Value Setting command failed.";
constexpr const char* InitialFailed = "Initial Count Value Setting command failed.";
constexpr const char* AlarmEnableFailed = "Alarm Enable/Disable command failed.";
constexpr const char* AlarmLimitFailed = "Alarm Limit Value Setting command failed.";

constexpr CounterCommand InputModeCommand =
    Command<&Values::InputMode>('$', "B", "Input Mode Setting command failed.");

// Only of a module that counts, in the order in which they are sent.
constexpr CounterCommand CountingCommands[] = {
    Command<&Values::GateMode>('$', "A", "Gate Mode Setting command failed."),
    Command<&Values::CounterStatus, 0>('$', "50", StartFailed),
    Command<&Values::CounterStatus, 1>('$', "51", StartFailed),
    Command<&Values::MaxValue, 0>('$', "30", MaximumFailed),
    Command<&Values::MaxValue, 1>('$', "31", MaximumFailed),
    Command<&Values::InitialValue, 0>('@', "P0", InitialFailed),
    Command<&Values::InitialValue, 1>('@', "P1", InitialFailed),
    Command<&Values::DigitalFilter>('$', "4", "Digital Filter Enable/Disable command failed."),
    Command<&Values::MinAtHigh>(
        '$', "0H", "Min Input Signal Width at High Level Setting command failed.",
        [](const CounterConfig& config) { return PadLeft(config.MinAtHigh, WidthDigits, '0'); }),
    Command<&Values::MinAtLow>(
        '$', "0L", "Min Input Signal Width at Low Level Setting command failed.",
        [](const CounterConfig& config) { return PadLeft(config.MinAtLow, WidthDigits, '0'); }),
    Command<&Values::TtlAtHigh>(
        '$', "1H", "TTL Input High Trigger Level Setting command failed.",
        [](const CounterConfig& config) { return LevelText(config.Values.TtlAtHigh); }),
    Command<&Values::TtlAtLow>('$', "1L", "TTL Input Low Trigger Level Setting command failed.",
                               [](const CounterConfig& config) { return LevelText(config.Values.TtlAtLow); }),
    Command<&Values::AlarmSetting, 0>('@', "", AlarmEnableFailed, AlarmEnableText<0>),
    Command<&Values::AlarmSetting, 1>('@', "", AlarmEnableFailed, AlarmEnableText<1>),
    Command<&Values::AlarmValue, 0>('@', "PA", AlarmLimitFailed),
    Command<&Values::AlarmValue, 1>('@', "SA", AlarmLimitFailed),
};

bool FitsCount(double count) {
    return std::trunc(count) <= HighestCount && std::trunc(count) >= LowestCount;
}

bool FitsEntry(double value) {
    return std::fabs(value) <= std::numeric_limits<std::int16_t>::max();
}

double Tenths(double volts) {
    return std::round(volts * 10);
}

std::optional<RefusedEntry> RefusedCount(const Values& values) {
    struct Counts {
        const char* Control;
        const char* Name;
        const std::array<double, 2>& Of;
    };
    for (const Counts& counts : {Counts{"MaxValue", "maximum value", values.MaxValue},
                                 {"InitialValue", "initial value", values.InitialValue},
                                 {"AlarmValue", "alarm value", values.AlarmValue}})
        for (std::size_t counter = 0; counter < counts.Of.size(); ++counter)
            if (!FitsCount(counts.Of[counter])) {
                const std::string number = std::to_string(counter);
                return RefusedEntry{std::string(counts.Control) + "_" + number,
                                    "The " + std::string(counts.Name) + " of counter " + number +
                                        " is too large. Enter a number from 0 to 4294967295."};
            }
    return std::nullopt;
}

// A width goes out as it is written: a carriage return in it would end the command.
bool BreaksCommand(const std::string& width) {
    return std::ranges::any_of(width, [](unsigned char character) { return character < ' '; });
}

// The settings with their widths and levels as the entry holds them.
CounterConfig Converted(CounterConfig config) {
    Values& values = config.Values;
    values.MinAtHigh = static_cast<std::int16_t>(NumericValue(config.MinAtHigh));
    values.MinAtLow = static_cast<std::int16_t>(NumericValue(config.MinAtLow));
    values.TtlAtHigh = static_cast<std::int16_t>(Tenths(config.TtlAtHigh));
    values.TtlAtLow = static_cast<std::int16_t>(Tenths(config.TtlAtLow));
    return config;
}

bool ApplyModuleConfig(Session& session, int index, const CounterConfig& config, Messages& messages) {
    ModuleRecord& record = session.ModuleTable[index];
    const std::int16_t gateTime = config.Values.GateTime;
    if (config.Link == LinkSettingsOf(record) && config.TypeCode == record.InputRange &&
        gateTime == record.Counter.GateTime)
        return true;
    const auto gateBits = static_cast<std::int16_t>(gateTime * GateTimeBit);
    const bool accepted =
        WriteModuleConfig(session, index, config.Link, config.TypeCode, FormatByte(config.Link, gateBits));
    if (!NoteStep(session, accepted, "Module Configuration command failed.", messages))
        return false;
    StoreLinkSettings(record, config.Link);
    record.InputRange = config.TypeCode;
    record.Counter.GateTime = gateTime;
    return true;
}

bool ApplyCommand(Session& session, int index, const CounterCommand& command, const CounterConfig& config,
                  Messages& messages) {
    Values& kept = session.ModuleTable[index].Counter;
    if (command.Equal(kept, config.Values))
        return true;
    const bool accepted =
        WriteAcknowledged(session, index, command.Lead, command.Code + command.Text(config));
    if (accepted)
        command.Keep(kept, config.Values);
    return NoteStep(session, accepted, command.Failure, messages);
}

} // namespace

CounterConfig CounterConfigOf(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    const Values& values = record.Counter;
    return {LinkSettingsOf(record),
            record.InputRange,
            values,
            std::to_string(values.MinAtHigh),
            std::to_string(values.MinAtLow),
            values.TtlAtHigh / 10.0,
            values.TtlAtLow / 10.0};
}

std::optional<RefusedEntry> RefusedCounterSetting(const CounterConfig& config) {
    if (auto refused = RefusedAddress(config.Link))
        return refused;
    // What a module that measures frequencies is not sent need not fit either.
    if (config.TypeCode != CounterRange)
        return std::nullopt;
    if (auto refused = RefusedCount(config.Values))
        return refused;
    struct Number {
        const char* Control;
        const char* Name;
        double Value;
        bool BreaksCommand;
    };
    const auto width = [](const char* control, const char* name, const std::string& text) {
        return Number{control, name, NumericValue(text), BreaksCommand(text)};
    };
    for (const Number& number : {width("MinAtHigh", "minimum signal width at high level", config.MinAtHigh),
                                 width("MinAtLow", "minimum signal width at low level", config.MinAtLow),
                                 Number{"TTLAtHigh", "high trigger level", Tenths(config.TtlAtHigh), false},
                                 Number{"TTLAtLow", "low trigger level", Tenths(config.TtlAtLow), false}}) {
        const std::string the = "The " + std::string(number.Name);
        if (number.BreaksCommand)
            return RefusedEntry{number.Control, the + " is not a number. Enter it in microseconds."};
        if (!FitsEntry(number.Value))
            return RefusedEntry{number.Control, the + " is too large. Enter a smaller number."};
    }
    return std::nullopt;
}

ConfigOutcome ApplyCounterConfig(Session& session, int index, const CounterConfig& config,
                                 Messages& messages) {
    session.ConfigResult = 2;
    if (TellRefused(RefusedCounterSetting(config), messages))
        return ConfigOutcome::Refused;
    const bool counts = config.TypeCode == CounterRange;
    const CounterConfig wanted = counts ? Converted(config) : config;

    bool complete = ApplyModuleConfig(session, index, wanted, messages);
    complete &= ApplyCommand(session, index, InputModeCommand, wanted, messages);
    if (counts)
        for (const CounterCommand& command : CountingCommands)
            complete &= ApplyCommand(session, index, command, wanted, messages);
    return EndConfig(session, complete, messages);
}

} // namespace kavro
