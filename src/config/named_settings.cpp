#include "config/named_settings.h"

#include "link/baud.h"
#include "link/codes.h"
#include "link/entered_values.h"
#include "link/model_choices.h"
#include "link/number_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

namespace kavro {

namespace {

constexpr double RoundingError = 1e-6;

// The whole text as a number; an exponent is allowed.
std::optional<double> ReadNumber(std::string text) {
    text = Trim(text);
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    const char* const end = text.data() + text.size();
    double value = 0;
    const auto [rest, error] = std::from_chars(text.data() + (plus ? 1 : 0), end, value);
    return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

// Turns a text into a number; nothing when it does not fit.
using Reader = std::function<std::optional<double>(const std::string& text)>;

std::function<void(const std::string&)> Taking(const std::string& name, const std::string& values,
                                               const NumberField& field, const Reader& read) {
    return [=](const std::string& text) {
        const auto value = read(text);
        if (!value)
            throw RuntimeFailure("'" + text + "' does not fit " + name + "; give " + values + ".");
        field.Set(*value);
    };
}

std::optional<double> ReadMask(const std::string& text, unsigned all) {
    if (SameText(text, "all") || SameText(text, "none"))
        return SameText(text, "all") ? all : 0;
    if (SameText(text.substr(0, 2), "0x")) {
        const auto mask = HexNumber(text.substr(2));
        return mask && *mask <= all ? std::optional<double>(*mask) : std::nullopt;
    }
    unsigned mask = 0;
    for (std::size_t start = 0; start <= text.size();) {
        const auto end = std::min(text.find(',', start), text.size());
        const auto bit = CappedNumber(Trim(std::string_view(text).substr(start, end - start)));
        if (!bit || *bit > 31 || (1U << *bit & all) == 0)
            return std::nullopt;
        mask |= 1U << *bit;
        start = end + 1;
    }
    return mask;
}

std::string RangeText(std::int16_t code) {
    return ToHex(code, 2) + " (" + Trim(RangeName(code)) + ")";
}

std::optional<double> ReadRange(const std::string& text, const std::vector<std::int16_t>& codes) {
    const auto given = HexNumber(text);
    const auto found = std::ranges::find_if(codes, [&](std::int16_t code) {
        return given ? *given == static_cast<std::uint32_t>(code)
                     : SameText(text, Trim(RangeName(code))) || SameText(text, RangeText(code));
    });
    return found == codes.end() ? std::nullopt : std::optional<double>(*found);
}

} // namespace

bool SameValue(const NamedSetting& left, const NamedSetting& right) {
    if (left.Told != right.Told)
        return false;
    return !left.Told || left.Value() == right.Value() ||
           (!left.Sent().empty() && left.Sent() == right.Sent());
}

NumberField NumberField::Bit(unsigned& mask, int bit) {
    return {[&mask, bit] { return static_cast<double>(mask >> bit & 1U); },
            [&mask, bit](double value) { mask = (mask & ~(1U << bit)) | (value != 0 ? 1U << bit : 0U); }};
}

double NumberField::ToDouble(float number) {
    return NumericValue(ShortestText(number));
}

double NumberField::ToDouble(const std::string& text) {
    return NumericValue(text);
}

void NumberField::From(double value, std::string& text) {
    text = ShortestText(value);
}

std::string SettingText(const NamedSetting& setting) {
    const std::string remark = setting.Remark();
    return ValueText(setting.Value()) + (remark.empty() ? "" : " (" + remark + ")");
}

NamedSetting AddressSetting(const std::string& name, const NumberField& field) {
    const auto take = [field](const std::string& text) { field.Set(ParseAddress(text)); };
    return {name, "0 to 255", [field] { return field.Get(); }, take};
}

NamedSetting BaudSetting(const std::string& name, const NumberField& field) {
    const auto take = [field](const std::string& text) { field.Set(ParseBaud(text)); };
    return {name, Listed({BaudNames.begin(), BaudNames.end()}),
            [field] { return static_cast<double>(BaudFromCode(static_cast<std::int16_t>(field.Get()))); },
            take};
}

NamedSetting NumberSetting(const std::string& name, const NumberField& field, const NumberBounds& bounds) {
    const double step = std::pow(10, bounds.Decimals);
    const auto read = [bounds, step](const std::string& text) -> std::optional<double> {
        const auto value = ReadNumber(text);
        const bool fits = value && *value >= bounds.Low && *value <= bounds.High &&
                          std::fabs(*value * step - std::round(*value * step)) < RoundingError;
        return fits ? value : std::nullopt;
    };
    std::string values = bounds.Values;
    if (values.empty())
        values = ShortestText(bounds.Low) + " to " + ShortestText(bounds.High);
    return {name, values, [field] { return field.Get(); }, Taking(name, values, field, read)};
}

NamedSetting SwitchSetting(const std::string& name, const NumberField& field) {
    NamedSetting setting = ChoiceSetting(name, field, {"off", "on"});
    setting.Value = [field] { return field.Get() != 0; };
    return setting;
}

NamedSetting CodeSetting(const std::string& name, const NumberField& field,
                         const std::vector<SettingChoice>& choices) {
    std::vector<std::string> names;
    names.reserve(choices.size());
    for (const SettingChoice& choice : choices)
        names.push_back(choice.Name);
    const auto value = [field, choices] {
        const auto found = std::ranges::find(choices, field.Get(), &SettingChoice::Code);
        return found == choices.end() ? SettingValue(field.Get()) : SettingValue(found->Name);
    };
    const auto read = [choices](const std::string& text) -> std::optional<double> {
        const auto found = std::ranges::find_if(choices, [&](const SettingChoice& choice) {
            return SameText(text, choice.Name) || CappedNumber(text) == choice.Code;
        });
        return found == choices.end() ? std::nullopt : std::optional<double>(found->Code);
    };
    const std::string values = Listed(names);
    return {name, values, value, Taking(name, values, field, read)};
}

NamedSetting ChoiceSetting(const std::string& name, const NumberField& field,
                           const std::vector<std::string>& names) {
    std::vector<SettingChoice> choices;
    choices.reserve(names.size());
    for (const std::string& choice : names)
        choices.push_back({static_cast<std::int16_t>(choices.size()), choice});
    return CodeSetting(name, field, choices);
}

NamedSetting RangeSetting(const std::string& name, const NumberField& field, const std::string& model) {
    const std::vector<std::int16_t> codes = RangeCodes(model);
    std::vector<std::string> texts;
    texts.reserve(codes.size());
    for (const std::int16_t code : codes)
        texts.push_back(RangeText(code));
    const std::string values = Listed(texts);
    const auto code = [field] { return static_cast<std::int16_t>(field.Get()); };
    const auto read = [codes](const std::string& text) { return ReadRange(text, codes); };
    return {.Name = name,
            .Values = values,
            .Value = [code] { return ToHex(code(), 2); },
            .Take = Taking(name, values, field, read),
            .Remark = [code] { return Trim(RangeName(code())); },
            .Hint = "code in hexadecimal, or name, as 08 or \"+/- 10V\""};
}

NamedSetting BitsSetting(const std::string& name, const NumberField& field, int count) {
    const unsigned all = (1U << count) - 1;
    const auto value = [field, count] {
        std::vector<int> bits;
        for (int bit = 0; bit < count; ++bit)
            if ((static_cast<unsigned>(field.Get()) >> bit & 1U) != 0)
                bits.push_back(bit);
        return bits;
    };
    const auto read = [all](const std::string& text) { return ReadMask(text, all); };
    const std::string values = "numbers of 0 to " + std::to_string(count - 1) +
                               " as \"0,2\", all, none, or a mask as 0x" +
                               ToHex(static_cast<std::int32_t>(all), 2);
    return {name, values, value, Taking(name, values, field, read)};
}

NamedSetting FixedSetting(const std::string& name, const std::string& text) {
    const auto take = [name](const std::string&) {
        throw RuntimeFailure("The " + name + " of a module cannot be changed.");
    };
    return {.Name = name,
            .Values = "shown only",
            .Value = [text] { return text; },
            .Take = take,
            .When = Writable::Never};
}

NamedSetting ReadBy(const std::string& command, NamedSetting setting) {
    setting.ReadBy = command;
    return setting;
}

NamedSetting LockedWhile(NamedSetting setting, std::function<bool()> locked, const std::string& reason) {
    setting.Locked = [locked = std::move(locked), reason] { return locked() ? reason : std::string(); };
    return setting;
}

} // namespace kavro
