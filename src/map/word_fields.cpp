#include "map/word_fields.h"

#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/text.h"
#include "map/reply_forms.h"
#include "map/setup_words.h"

#include <algorithm>

namespace kavro {

namespace {

using Words = std::optional<std::string>;

// A field as it stands in the pattern, what it takes, and for whom.
struct FieldText {
    std::string_view Names; // of the bits
    std::string_view Text;
    const WordContext& Known;
};

constexpr std::size_t Rest = std::string_view::npos;
constexpr std::size_t AsWritten = 0; // the field says how many characters it takes

struct FieldKind {
    char Letter;
    std::size_t Size; // characters that it takes
    Words (*Put)(const FieldText& field);
};

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

bool IsNumber(std::string_view text) {
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    return !text.empty() && text.front() != '.' && std::ranges::count(text, '.') <= 1 &&
           text.find_first_not_of("0123456789.") == std::string_view::npos;
}

bool HasSignOrPoint(std::string_view text) {
    return text.find_first_of("+-.") != std::string_view::npos;
}

Words AsItStands(bool good, std::string_view text) {
    return good ? Words(text) : std::nullopt;
}

Words InUnit(std::string_view text, std::string_view unit) {
    if (!IsNumber(text))
        return std::nullopt;
    return PlainNumber(text) + (unit.empty() ? "" : " ") + std::string(unit);
}

// Steps of a converter have no unit.
Words Measured(const FieldText& field, std::int16_t dataFormat) {
    const std::string_view text = field.Text;
    const bool steps = (text.size() == 3 || text.size() == 4) && !HasSignOrPoint(text) && HexNumber(text);
    if (!field.Known.Record)
        return AsItStands(steps || (HasSignOrPoint(text) && IsNumber(text)), text);
    if (dataFormat == TwosComplement)
        return AsItStands(steps, text);
    const std::string unit =
        dataFormat == PercentOfRange ? "%" : Trim(RangeUnit(field.Known.Record->InputRange, dataFormat));
    return InUnit(text, unit);
}

Words InDataFormat(const FieldText& field) {
    return Measured(field, field.Known.Record ? field.Known.Record->DataFormat : std::int16_t{0});
}

// Written in another data format, as a calibration does, a number has no unit to go by.
Words AsOutput(const FieldText& field) {
    const ModuleRecord* record = field.Known.Record;
    if (!record)
        return InDataFormat(field);
    const ReplyMeasure measure{
        .Address = {}, .OwnAddress = {}, .InputRange = record->InputRange, .DataFormat = record->DataFormat};
    const bool fits = FitsForm(">" + std::string(field.Text), ">O", measure);
    return fits ? InDataFormat(field) : AsItStands(IsNumber(field.Text), field.Text);
}

Words InEngineeringUnits(const FieldText& field) {
    return Measured(field, EngineeringUnits);
}

Words Count(const FieldText& field) {
    const auto count = HexNumber(field.Text);
    return count ? Words(std::to_string(*count)) : std::nullopt;
}

Words CountOrFrequency(const FieldText& field) {
    const bool frequency = field.Known.Record && field.Known.Record->InputRange == FrequencyRange;
    const Words count = Count(field);
    return count && frequency ? *count + " Hz" : count;
}

Words SignedCount(const FieldText& field) {
    const auto count = HexNumber(field.Text.substr(1));
    if (!count || (field.Text.front() != '+' && field.Text.front() != '-'))
        return std::nullopt;
    return field.Text.front() + std::to_string(*count);
}

Words SignedByte(const FieldText& field) {
    const auto byte = HexNumber(field.Text);
    if (!byte)
        return std::nullopt;
    const int value = static_cast<int>(*byte) - (*byte > 0x7F ? 0x100 : 0);
    return (value > 0 ? "+" : "") + std::to_string(value);
}

Words Decimal(const FieldText& field) {
    const bool digits = std::ranges::all_of(field.Text, IsDigit);
    return digits ? Words(PlainNumber(field.Text)) : std::nullopt;
}

Words Tenths(const FieldText& field) {
    const Words number = Decimal(field);
    if (!number)
        return std::nullopt;
    std::string text(field.Text);
    text.insert(text.size() - 1, ".");
    return PlainNumber(text);
}

Words NamedBits(std::uint32_t bits, std::string_view names) {
    std::string words;
    while (!names.empty()) {
        const std::size_t end = std::min(names.find(','), names.size());
        if ((bits & 1U) != 0)
            words += (words.empty() ? "" : ", ") + std::string(names.substr(0, end));
        names.remove_prefix(std::min(end + 1, names.size()));
        bits >>= 1U;
    }
    if (bits != 0)
        return std::nullopt;
    return words.empty() ? "none" : words;
}

Words Bits(const FieldText& field) {
    const auto bits = HexNumber(field.Text);
    if (!bits)
        return std::nullopt;
    return field.Names.empty() ? BitNumbers(*bits) : NamedBits(*bits, field.Names);
}

// A side that the model has no channels of is left out.
Words DigitalWords(const FieldText& field) {
    const auto outputs = HexNumber(field.Text.substr(0, 4));
    const auto inputs = HexNumber(field.Text.substr(std::min<std::size_t>(field.Text.size(), 4)));
    if (field.Text.size() != 8 || !outputs || !inputs)
        return std::nullopt;
    const DigitalChannels has =
        field.Known.Model.empty() ? DigitalChannels{16, 16} : DigitalChannelsOf(field.Known.Model);
    std::string words = has.Outputs > 0 ? "outputs on: " + BitNumbers(*outputs) : "";
    if (has.Inputs > 0)
        words += (words.empty() ? "" : "; ") + ("inputs on: " + BitNumbers(*inputs));
    return words;
}

Words Text(const FieldText& field) {
    return AsItStands(
        std::ranges::all_of(field.Text, [](char character) { return character >= ' ' && character <= '~'; }),
        field.Text);
}

Words NewAddress(const FieldText& field) {
    if (!HexNumber(field.Text))
        return std::nullopt;
    return field.Text == field.Known.Address ? "" : "address " + std::string(field.Text) + ", ";
}

Words DigitOrLetter(const FieldText& field) {
    const char character = field.Text.front();
    return AsItStands(IsDigit(character) || (character >= 'A' && character <= 'Z'), field.Text);
}

Words Port(const FieldText& field) {
    return AsItStands(field.Text.front() >= 'A' && field.Text.front() <= 'D', field.Text);
}

constexpr FieldKind Kinds[] = {
    {'x', 1, DigitOrLetter},
    {'p', 1, Port},
    {'0', 1, [](const FieldText& field) { return field.Text == "0" ? Words("") : std::nullopt; }},
    {'h', AsWritten,
     [](const FieldText& field) { return AsItStands(HexNumber(field.Text).has_value(), field.Text); }},
    {'c', AsWritten, Count},
    {'d', AsWritten, Decimal},
    {'v', AsWritten, Tenths},
    {'s', AsWritten, SignedCount},
    {'b', 2, SignedByte},
    {'m', AsWritten, Bits},
    {'A', 2, NewAddress},
    {'T', Rest, Text},
    {'V', Rest, InDataFormat},
    {'E', Rest, InEngineeringUnits},
    {'O', Rest, AsOutput},
    {'P', Rest, [](const FieldText& field) { return InUnit(field.Text, "V"); }},
    {'K', Rest, [](const FieldText& field) { return InUnit(field.Text, "C"); }},
    {'F', Rest, CountOrFrequency},
    {'W', Rest, DigitalWords},
    {'G', 6, [](const FieldText& field) { return SetupWords(field.Text); }},
    {'Q', 8, [](const FieldText& field) { return ConverterSetupWords(field.Text); }},
};

// The word in the place that the digit names; an empty one stands for none.
Words Choice(std::string_view choices, char digit) {
    for (; digit > '0'; --digit) {
        const std::size_t end = choices.find('|');
        if (end == std::string_view::npos)
            return std::nullopt;
        choices.remove_prefix(end + 1);
    }
    const std::string_view word = choices.substr(0, choices.find('|'));
    return AsItStands(digit == '0' && !word.empty(), word);
}

std::size_t WrittenSize(std::string_view field) {
    return (field[1] - '0') + (field.front() == 's' ? 1U : 0U);
}

// The words of one field, which takes its characters from `text`.
Words Put(std::string_view field, std::string_view& text, const WordContext& known) {
    if (field == "M")
        return known.Model.empty() ? "" : std::string(known.Model) + ": ";
    const bool choice = field.find('|') != std::string_view::npos;
    const auto* kind = std::ranges::find(Kinds, field.front(), &FieldKind::Letter);
    if (!choice && kind == std::end(Kinds))
        return std::nullopt;
    const std::size_t size = choice ? 1 : kind->Size == AsWritten ? WrittenSize(field) : kind->Size;
    if (text.empty() || (size != Rest && text.size() < size))
        return std::nullopt;
    const std::string_view taken = text.substr(0, size);
    text.remove_prefix(taken.size());
    if (choice)
        return Choice(field, taken.front());
    const std::size_t names = field.find(':');
    return kind->Put({names == Rest ? std::string_view() : field.substr(names + 1), taken, known});
}

} // namespace

std::optional<std::string> FilledIn(std::string_view pattern, std::string_view text,
                                    const WordContext& known) {
    std::string words;
    while (true) {
        const std::size_t open = pattern.find('{');
        words += pattern.substr(0, open);
        if (open == std::string_view::npos)
            break;
        const std::size_t close = pattern.find('}', open);
        const Words part = Put(pattern.substr(open + 1, close - open - 1), text, known);
        if (!part)
            return std::nullopt;
        words += *part;
        pattern.remove_prefix(close + 1);
    }
    return text.empty() ? Words(std::move(words)) : std::nullopt;
}

} // namespace kavro
