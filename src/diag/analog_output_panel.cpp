#include "diag/analog_output_panel.h"

#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kavro {

namespace {

constexpr float PortSpan = 20; // -10 V to 10 V
constexpr std::size_t InputsReplyLength = 7;
constexpr int StepsPerUnit = 1000;  // the data has three decimals
constexpr int PercentSteps = 10000; // it has two

struct OutputRange {
    std::int16_t Code = 0;
    float Low = 0;
    float Span = 0;
};

constexpr OutputRange OutputRanges[] = {{48, 0, 20}, {49, 4, 16}, {50, 0, 10}};

OutputRange RangeOf(std::int16_t code) {
    const auto* found = std::ranges::find(OutputRanges, code, &OutputRange::Code);
    return found == std::end(OutputRanges) ? OutputRange{} : *found;
}

// Single precision, product before quotient.
float ShareOf(float whole, BarPosition bar) {
    const float product = static_cast<float>(bar.Position) * whole;
    return product / static_cast<float>(bar.Total);
}

// `FormatNumber` writes a point whatever the user's locale, so no decimal comma can reach a module.
std::string OutputData(const ModuleRecord& record, BarPosition bar) {
    switch (record.DataFormat) {
    case EngineeringUnits:
        return FormatNumber(OutputValue(record.InputRange, bar), 2, 3);
    case PercentOfRange:
        return "+" + FormatNumber(ShareOf(100, bar), 3, 2);
    case TwosComplement: // halves go to the even count, so that the middle of the bar is 800
        return ToHex(static_cast<std::int32_t>(std::nearbyint(ShareOf(OutputCounts, bar))), 3);
    default: // a format that no such module has: no data, which it refuses
        return {};
    }
}

// What the data of `OutputData` stands for, in the unit of the range.
double ValueOfData(const ModuleRecord& record, const std::string& data) {
    const OutputRange range = RangeOf(record.InputRange);
    if (record.DataFormat == PercentOfRange)
        return range.Low + NumericValue(data) * range.Span / 100;
    if (record.DataFormat == TwosComplement)
        return range.Low + static_cast<double>(HexNumber(data).value_or(0)) * range.Span / OutputCounts;
    return NumericValue(data);
}

// Where the positions of a bar count from.
double OriginOf(const OutputBounds& bounds) {
    return bounds.Low < 0 ? 0 : bounds.Low;
}

} // namespace

OutputBounds SingleOutputBounds(const ModuleRecord& record) {
    const OutputRange range = RangeOf(record.InputRange);
    return {range.Low, range.Low + range.Span, Trim(RangeUnit(record.InputRange, EngineeringUnits))};
}

std::optional<double> ParseOutput(const std::string& text, const OutputBounds& bounds) {
    const char* const begin = text.data() + (text.starts_with('+') ? 1 : 0);
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value, std::chars_format::fixed);
    // The comparison is false for what is not a number, too.
    if (error != std::errc() || stop != end || !(value >= bounds.Low && value <= bounds.High))
        return std::nullopt;
    return value;
}

BarPosition BarOf(double value, const OutputBounds& bounds) {
    return {static_cast<int>(std::lround((value - OriginOf(bounds)) * StepsPerUnit)),
            std::max(1, static_cast<int>(std::lround((bounds.High - bounds.Low) * StepsPerUnit)))};
}

double ValueAt(BarPosition bar, const OutputBounds& bounds) {
    return OriginOf(bounds) + (bounds.High - bounds.Low) * bar.Position / bar.Total;
}

double OutputResolution(const ModuleRecord& record) {
    const double span = RangeOf(record.InputRange).Span;
    return record.DataFormat == PercentOfRange   ? span / PercentSteps
           : record.DataFormat == TwosComplement ? span / OutputCounts
                                                 : 1.0 / StepsPerUnit;
}

std::string ShownOutput(float value, const std::string& separator) {
    return ShownNumber(FormatNumber(value, 1, 3), separator);
}

float OutputValue(std::int16_t rangeCode, BarPosition bar) {
    const OutputRange range = RangeOf(rangeCode);
    return ShareOf(range.Span, bar) + range.Low;
}

std::string LowRangeText(std::int16_t rangeCode) {
    return FormatNumber(RangeOf(rangeCode).Low, 1, 0);
}

std::string HighRangeText(std::int16_t rangeCode) {
    return FormatNumber(RangeFullScale(rangeCode), 1, 0);
}

std::string OutputCommand(const std::string& address, const ModuleRecord& record, BarPosition bar) {
    return "#" + address + OutputData(record, bar);
}

float PortValue(BarPosition bar) {
    return ShareOf(PortSpan, bar);
}

std::string PortCommand(const std::string& address, int port, float value) {
    return "#" + address + static_cast<char>('A' + port) + (value < 0 ? "-" : "+") +
           FormatNumber(std::abs(value), 2, 3);
}

std::optional<ToldOutput> ReadSingleOutput(Session& session, int index) {
    const ModuleReply reply = AskModule(session, index, '$', "6");
    if (reply.Answer != Answer::Ok)
        return std::nullopt;
    const ModuleRecord& record = session.ModuleTable[index];
    const OutputRange range = RangeOf(record.InputRange);
    const double value = ValueOfData(record, reply.Data);
    return ToldOutput{FormatNumber(value, 1, 3), value < range.Low || value > range.Low + range.Span};
}

std::optional<std::string> ReadTerminals(Session& session, int index) {
    const ModuleReply reply = AskModule(session, index, '$', "8");
    return reply.Answer == Answer::Ok ? std::optional(FormatNumber(NumericValue(reply.Data), 1, 3))
                                      : std::nullopt;
}

std::optional<ToldOutput> ReadPort(Session& session, int index, int port) {
    const ModuleReply reply = AskModule(session, index, '$', {'6', static_cast<char>('A' + port)});
    if (reply.Answer != Answer::Ok)
        return std::nullopt;
    const double value = NumericValue(reply.Data);
    return ToldOutput{(value < 0 ? "-" : "+") + FormatNumber(std::abs(value), 1, 3),
                      value < PortBounds.Low || value > PortBounds.High};
}

std::optional<unsigned> ReadOutputModuleInputs(Session& session, int index) {
    ExchangeWithModule(session, index, "$" + AddressText(session, index) + "8", session.Line.ReplyTimeout);
    const std::string& reply = session.Line.ReplyText;
    const auto inputs = session.Line.ReplyIs('!') && reply.size() == InputsReplyLength
                            ? HexNumber(Middle(reply, 2, 2))
                            : std::nullopt;
    if (!inputs && session.Line.ReplyStatus != 0 && !session.Line.ReplyIs('?'))
        session.Line.NoteUnfit();
    return inputs;
}

} // namespace kavro
