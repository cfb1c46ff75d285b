#include "link/codes.h"

#include "link/models.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace kavro {

namespace {

// By kind.
constexpr Family Families[] = {DigitalIo,    DigitalIo,        AnalogInput, MultiAnalogInput, AnalogOutput,
                               AnalogOutput, CounterFrequency, Converter,   UnknownFamily};
static_assert(std::size(Families) == static_cast<std::size_t>(ModelKind::Unknown) + 1);

struct Range {
    std::int16_t Code;
    std::string_view Name;
    double FullScale;
};

// Several codes carry the same name on purpose, and code 33 (hexadecimal) has a name but no full scale.
constexpr Range Ranges[] = {
    {0x00, "+/- 15mV", 15},       {0x01, "+/- 50mV", 50},       {0x02, "+/- 100mV", 100},
    {0x03, "+/- 500mV", 500},     {0x04, "+/- 1V", 1},          {0x05, "+/- 2.5V", 2.5},
    {0x06, "+/- 20mA", 20},       {0x08, "+/- 10V", 10},        {0x09, "+/- 5V", 5},
    {0x0A, "+/- 1V", 1},          {0x0B, "+/- 500mV", 500},     {0x0C, "+/- 150mV", 150},
    {0x0D, "+/- 20mA", 20},       {0x0E, "T/C Type J", 760},    {0x0F, "T/C Type K", 1370},
    {0x10, "T/C Type T", 400},    {0x11, "T/C Type E", 1000},   {0x12, "T/C Type R", 1750},
    {0x13, "T/C Type S", 1750},   {0x14, "T/C Type B", 1800},   {0x15, "T/C Type N", 1300},
    {0x16, "T/C Type C", 2320},   {0x20, "Pt, +/- 100C", 100},  {0x21, "Pt, 0 to 100C", 100},
    {0x22, "Pt, 0 to 200C", 200}, {0x23, "Pt, 0 to 600C", 600}, {0x24, "Pt, +/- 100C", 100},
    {0x25, "Pt, 0 to 100C", 100}, {0x26, "Pt, 0 to 200C", 200}, {0x27, "Pt, 0 to 600C", 600},
    {0x28, "Ni, +/- 100C", 100},  {0x29, "Ni, -120~100C", 100}, {0x2A, "Cu, 0~60 ohms", 60},
    {0x30, "0 to 20mA", 20},      {0x31, "4 to 20mA", 20},      {0x32, "0 to 10V", 10},
    {0x33, "+/- 10V", 0},         {CounterRange, "Counter", 0}, {FrequencyRange, "Frequency", 0},
};

struct UnitSpan {
    std::int16_t First, Last;
    std::string_view Unit;
};

// Codes 32 to 41 are the resistance sensors, whose unit depends on the data format.
constexpr std::int16_t FirstSensor = 32;
constexpr std::int16_t LastSensor = 41;

constexpr UnitSpan Units[] = {
    {0, 3, "mV  "},   {4, 5, "V   "},   {6, 6, "mA  "},   {8, 10, "V   "},
    {11, 12, "mV  "}, {13, 13, "mA  "}, {14, 22, "C   "}, {FirstSensor, LastSensor, "C   "},
    {42, 42, "ohms"}, {48, 49, "mA  "}, {50, 51, "V   "},
};

constexpr std::string_view FormatNames[] = {"Engineering Units", "% of FSR", "Two's complement", "Ohms"};
constexpr std::string_view AlarmModeNames[] = {"Disabled", "Momentary", "Latch"};

struct ReadingPattern {
    std::int16_t First, Last;
    int IntegerDigits, Decimals;
    double WrapLimit;
};

constexpr ReadingPattern AnyOtherPattern = {0, 0, 5, 0, 100000};
constexpr ReadingPattern Patterns[] = {
    {0, 1, 2, 3, 100},    {2, 3, 3, 2, 1000},    {4, 5, 1, 4, 10},     {6, 6, 2, 3, 100},
    {8, 8, 2, 3, 100},    {9, 10, 1, 4, 10},     {11, 12, 3, 2, 1000}, {13, 13, 2, 3, 100},
    {14, 14, 3, 2, 1000}, {15, 15, 4, 1, 10000}, {16, 16, 3, 2, 1000}, {17, 22, 4, 1, 10000},
    {32, 42, 3, 2, 1000},
};

const Range* FindRange(std::int16_t code) {
    const auto found = std::ranges::find(Ranges, code, &Range::Code);
    return found == std::end(Ranges) ? nullptr : found;
}

// The entry of a table of code spans that covers `code`.
template <class Span, std::size_t Size>
const Span* FindSpan(const Span (&table)[Size], std::int16_t code) {
    const auto found = std::ranges::find_if(
        table, [code](const Span& span) { return span.First <= code && code <= span.Last; });
    return found == std::end(table) ? nullptr : found;
}

std::string NameAt(std::span<const std::string_view> names, std::int16_t code, std::size_t width,
                   const char* what) {
    if (code < 0 || static_cast<std::size_t>(code) >= names.size())
        throw RuntimeFailure("Index out of bounds: " + std::string(what) + " " + std::to_string(code) + ".");
    return FixedText(names[static_cast<std::size_t>(code)], width);
}

} // namespace

std::string ModelSuffix(std::string_view model) {
    return Middle(Trim(model), 2, 3);
}

std::int16_t ModuleFamily(std::string_view model) {
    return Families[static_cast<std::size_t>(RowOfModel(model).Kind)];
}

std::optional<std::int16_t> ChannelCount(std::string_view model) {
    const std::int16_t channels = RowOfModel(model).Analog.Channels;
    return channels > 0 ? std::optional(channels) : std::nullopt;
}

std::string RangeName(std::int16_t code) {
    const auto* range = FindRange(code);
    return FixedText(range ? range->Name : std::string_view(), 16);
}

double RangeFullScale(std::int16_t code) {
    const auto* range = FindRange(code);
    return range ? range->FullScale : 0;
}

std::string RangeUnit(std::int16_t code, std::int16_t dataFormat) {
    if (dataFormat == Ohms && code >= FirstSensor && code <= LastSensor)
        return "ohms";
    const auto* unit = FindSpan(Units, code);
    return unit ? std::string(unit->Unit) : std::string();
}

std::string FormatName(std::int16_t dataFormat) {
    return NameAt(FormatNames, dataFormat, 17, "data format");
}

std::string AlarmModeName(std::int16_t alarmMode) {
    return NameAt(AlarmModeNames, alarmMode, 10, "alarm mode");
}

std::string FormatReading(std::string_view text, std::int16_t rangeCode) {
    const auto value = LeadingNumber(text);
    if (!value)
        throw RuntimeFailure("Not a number: reading \"" + std::string(text) + "\".");
    const auto* found = FindSpan(Patterns, rangeCode);
    const ReadingPattern& pattern = found ? *found : AnyOtherPattern;
    double magnitude = std::fabs(*value);
    if (magnitude > pattern.WrapLimit) // a value equal to the limit is not wrapped
        magnitude = std::fmod(magnitude, pattern.WrapLimit);
    return (*value >= 0 ? "+" : "-") + FormatNumber(magnitude, pattern.IntegerDigits, pattern.Decimals);
}

} // namespace kavro
