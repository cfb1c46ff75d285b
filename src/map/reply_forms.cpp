#include "map/reply_forms.h"

#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/model_choices.h"
#include "link/text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

// A number in the pattern of the range's engineering units: "sdd.ddd".
std::string EngineeringForm(std::int16_t range) {
    std::string form = FormatReading("0", range);
    std::ranges::replace(form, '+', 's');
    std::ranges::replace(form, '0', 'd');
    return form;
}

constexpr std::string_view PercentForm = "sddd.dd"; // ohms have the same

std::string ReadingForm(const ReplyMeasure& measure) {
    switch (measure.DataFormat) {
    case EngineeringUnits:
        return EngineeringForm(measure.InputRange);
    case TwosComplement:
        return "hhhh";
    default:
        return std::string(PercentForm);
    }
}

std::string OutputForm(std::int16_t dataFormat) {
    return dataFormat == EngineeringUnits ? "dd.ddd"
           : dataFormat == TwosComplement ? "hhh"
                                          : std::string(PercentForm);
}

bool FitsCharacter(char character, char place) {
    const auto upTo = [character](char highest) { return character >= '0' && character <= highest; };
    switch (place) {
    case 'd':
        return upTo('9');
    case 'h':
        return upTo('9') || (character >= 'A' && character <= 'F');
    case 'b':
        return upTo('1');
    case 't':
        return upTo('2');
    case 'q':
        return upTo('3');
    case 'o':
        return upTo('7');
    case 'z':
        return character == '0';
    case 's':
        return character == '+' || character == '-';
    default:
        return character == place;
    }
}

bool FitsPlaces(std::string_view text, std::string_view places) {
    return std::ranges::equal(text, places, FitsCharacter);
}

// More than a quarter beyond the full scale no module measures: a digit is wrong.
bool Within(std::string_view number, double fullScale) {
    return fullScale == 0 || std::fabs(NumericValue(number)) <= 1.25 * fullScale;
}

bool IsReading(std::string_view text, const ReplyMeasure& measure) {
    const double fullScale = RangeFullScale(measure.InputRange);
    const bool bounded = measure.DataFormat == EngineeringUnits || measure.DataFormat == PercentOfRange;
    return FitsPlaces(text, ReadingForm(measure)) &&
           (!bounded || Within(text, measure.DataFormat == EngineeringUnits ? fullScale : 100));
}

bool IsOutput(std::string_view text, const ReplyMeasure& measure) {
    const bool hexadecimal = measure.DataFormat == TwosComplement;
    const double fullScale =
        measure.DataFormat == EngineeringUnits ? RangeFullScale(measure.InputRange) : 100;
    return FitsPlaces(text, OutputForm(measure.DataFormat)) &&
           (hexadecimal || (NumericValue(text) >= 0 && NumericValue(text) <= fullScale));
}

constexpr double HighestPortVoltage = 10;

bool IsPortVoltage(std::string_view text) {
    return FitsPlaces(text, "sdd.ddd") && std::fabs(NumericValue(text)) <= HighestPortVoltage;
}

// A limit stands as it was set: not one has the sign of a negative number that was rounded to zero.
bool IsLimit(std::string_view text, const ReplyMeasure& measure) {
    return FitsPlaces(text, EngineeringForm(measure.InputRange)) &&
           Within(text, RangeFullScale(measure.InputRange)) &&
           (text.front() == '+' || NumericValue(text) < 0);
}

bool HasNoBitBeyond(std::string_view word, int channels) {
    const auto bits = HexNumber(word);
    return bits && *bits >> channels == 0;
}

bool AreDigitalWords(std::string_view text, const ReplyMeasure& measure) {
    const auto [inputs, outputs] = DigitalChannelsOf(measure.Model);
    return FitsPlaces(text, "hhhhhhhh") && HasNoBitBeyond(text.substr(0, 4), outputs) &&
           HasNoBitBeyond(text.substr(4), inputs);
}

bool IsChannelMask(std::string_view text, const ReplyMeasure& measure) {
    return FitsPlaces(text, "hh") && HasNoBitBeyond(text, ChannelCount(measure.Model).value_or(0));
}

bool IsSignedNumber(std::string_view text) {
    if (text.size() < 2 || !FitsCharacter(text.front(), 's'))
        return false;
    text.remove_prefix(1);
    return std::ranges::count(text, '.') <= 1 &&
           text.find_first_not_of("0123456789.") == std::string_view::npos && text.front() != '.';
}

constexpr std::size_t LongestTemperature = 16; // far more than any needs

bool IsTemperature(std::string_view text) {
    return text.size() <= LongestTemperature && IsSignedNumber(text) && text.back() != '.' &&
           text.find('.') != std::string_view::npos;
}

// "8", three digits, and at most two letters.
bool IsModel(std::string_view text) {
    const auto isLetter = [](char character) { return character >= 'A' && character <= 'Z'; };
    return text.size() >= 4 && text.size() <= 6 && FitsPlaces(text.substr(0, 4), "8ddd") &&
           std::ranges::all_of(text.substr(4), isLetter);
}

bool IsText(std::string_view text) {
    return !text.empty() &&
           std::ranges::all_of(text, [](char character) { return character >= ' ' && character <= '~'; });
}

bool FitsData(std::string_view data, std::string_view places, const ReplyMeasure& measure) {
    switch (places.size() == 1 ? places.front() : '\0') {
    case 'V':
        return IsReading(data, measure);
    case 'E':
        return IsLimit(data, measure);
    case 'O':
        return IsOutput(data, measure);
    case 'P':
        return IsPortVoltage(data);
    case 'W':
        return AreDigitalWords(data, measure);
    case 'C':
        return IsChannelMask(data, measure);
    case 'S':
        return IsSignedNumber(data);
    case 'K':
        return IsTemperature(data);
    case 'M':
        return IsModel(data);
    case 'T':
        return IsText(data);
    default:
        return FitsPlaces(data, places);
    }
}

constexpr std::size_t ClassLength = 1;
constexpr std::size_t AddressedLength = 3;

std::size_t DataStart(std::string_view form) {
    return NamesAddress(form) ? AddressedLength : ClassLength;
}

bool HasBaudCode(std::string_view digits) {
    const auto code = HexNumber(digits);
    return code && *code >= 3 && *code <= 10;
}

// The bits of a format byte that mean something: checksum, and data format or gate time.
std::int16_t FormatBits(std::int16_t family) {
    switch (family) {
    case DigitalIo:
        return 0x40;
    case CounterFrequency:
        return 0x44;
    default:
        return 0x43;
    }
}

bool IsTypeOf(std::string_view model, std::int16_t type) {
    switch (ModuleFamily(model)) {
    case DigitalIo:
        return type == 0x40;
    case CounterFrequency:
        return type == CounterRange || type == FrequencyRange;
    case Converter:
        return true;
    default:
        return std::ranges::count(RangeCodes(model), type) > 0;
    }
}

} // namespace

bool NamesAddress(std::string_view form) {
    return form.substr(ClassLength).starts_with("AA");
}

bool FitsForm(std::string_view reply, std::string_view form, const ReplyMeasure& measure) {
    if (reply.size() < DataStart(form) || reply.front() != form.front())
        return false;
    if (NamesAddress(form)) {
        const std::string_view named = reply.substr(ClassLength).substr(0, 2);
        if (named != measure.Address && named != measure.OwnAddress)
            return false;
    }
    return FitsData(reply.substr(DataStart(form)), form.substr(DataStart(form)), measure);
}

bool IsRefusal(std::string_view reply, const ReplyMeasure& measure) {
    return FitsForm(reply, "?AA", measure);
}

std::string ReplyData(std::string_view reply, std::string_view form) {
    return std::string(reply.substr(std::min(reply.size(), DataStart(form))));
}

bool HasModelsCodes(std::string_view reply, std::string_view model) {
    const auto field = [reply](std::size_t first, std::size_t count) {
        return static_cast<std::int16_t>(HexNumber(Middle(reply, first, count)).value_or(0));
    };
    const std::int16_t family = ModuleFamily(model);
    if (family == UnknownFamily)
        return true;
    if (family == Converter)
        return HasBaudCode(Middle(reply, 6, 1)) && HasBaudCode(Middle(reply, 7, 1));
    const bool analog = family == AnalogInput || family == AnalogOutput || family == MultiAnalogInput;
    const std::int16_t format = field(8, 2);
    return HasBaudCode(Middle(reply, 6, 2)) && IsTypeOf(model, field(4, 2)) &&
           (format & ~FormatBits(family)) == 0 &&
           (!analog || std::ranges::count(FormatCodes(model), static_cast<std::int16_t>(format % 4)) > 0);
}

} // namespace kavro
