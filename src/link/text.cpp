#include "link/text.h"

#include "link/runtime_failure.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <limits>

namespace kavro {

namespace {

constexpr int CarriageReturnKey = 13;
constexpr int BackspaceKey = 8;

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::int64_t WholeNumber(std::string_view text, std::string_view what, std::int64_t low, std::int64_t high) {
    const std::string trimmed = Trim(text);
    const bool plus = trimmed.size() > 1 && trimmed[0] == '+' && trimmed[1] != '-';
    const char* begin = trimmed.data() + (plus ? 1 : 0);
    const char* end = trimmed.data() + trimmed.size();
    std::int64_t value = 0;
    const auto [rest, error] = std::from_chars(begin, end, value);
    if (error == std::errc::result_out_of_range || (error == std::errc{} && (value < low || value > high)))
        throw RuntimeFailure("Overflow: " + std::string(what) + " " + Quoted(trimmed) + " is not between " +
                             std::to_string(low) + " and " + std::to_string(high) + ".");
    if (error != std::errc{} || rest != end)
        throw RuntimeFailure("Not a whole number: " + std::string(what) + " " + Quoted(trimmed) + ".");
    return value;
}

std::string Utf8(char32_t code) {
    std::string text;
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        text += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | (code >> 12));
        text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (code & 0x3F));
    }
    return text;
}

// Decimal digits of |value| rounded at 15 significant digits, and the power of ten of the first one.
struct Decimal {
    std::string Digits;
    int Exponent = 0;
};

Decimal ToDecimal(double value) {
    char buffer[32];
    const auto end =
        std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific, 14)
            .ptr;
    const std::string text(buffer, static_cast<std::size_t>(end - buffer));
    const auto mark = text.find('e');
    Decimal decimal{text.substr(0, 1) + text.substr(2, mark - 2), 0};
    const auto exponent = mark + (text[mark + 1] == '+' ? 2 : 1);
    std::from_chars(text.data() + exponent, text.data() + text.size(), decimal.Exponent);
    return decimal;
}

} // namespace

std::string Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(' ') - first + 1));
}

std::string Middle(std::string_view text, std::size_t first, std::size_t count) {
    return first > text.size() ? std::string() : std::string(text.substr(first - 1, count));
}

std::string FirstCharacters(const std::string& text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const bool begins = (static_cast<unsigned char>(text[end]) & 0xC0U) != 0x80U;
        if (begins && count-- == 0)
            break;
    }
    return text.substr(0, end);
}

std::string FixedText(std::string_view text, std::size_t width) {
    std::string fixed(text.substr(0, width));
    fixed.resize(width, ' ');
    return fixed;
}

std::string PadLeft(std::string_view text, std::size_t width, char fill) {
    return std::string(width > text.size() ? width - text.size() : 0, fill) + std::string(text);
}

bool SameText(std::string_view left, std::string_view right) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; };
    return std::ranges::equal(left, right, {}, lower, lower);
}

std::string Listed(const std::vector<std::string>& texts) {
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + text;
    return list;
}

std::string ToHex(std::int32_t value, std::int16_t digits) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%X", static_cast<unsigned>(value));
    return PadLeft(buffer, static_cast<std::size_t>(std::max<std::int16_t>(digits, 0)), '0');
}

std::string VisibleText(std::string_view text) {
    std::string visible;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= ' ' && code <= '~')
            visible += character;
        else
            visible += "<" + ToHex(code, 2) + ">";
    }
    return visible;
}

std::int16_t HexDigitValue(std::string_view digit) {
    const auto value = digit.size() == 1 ? HexNumber(digit) : std::nullopt;
    return static_cast<std::int16_t>(value.value_or(0));
}

std::optional<std::uint32_t> HexNumber(std::string_view text) {
    std::uint32_t value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value, 16);
    if (text.empty() || error != std::errc{} || rest != end)
        return std::nullopt;
    return value;
}

std::optional<double> LeadingNumber(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return std::nullopt;
    const bool negative = text[first] == '-';
    const auto start = first + (negative || text[first] == '+' ? 1 : 0);
    // from_chars would also take a second sign and the words "inf" and "nan".
    if (start >= text.size() || std::string_view("0123456789.").find(text[start]) == std::string_view::npos)
        return std::nullopt;
    double value = 0;
    const auto error = std::from_chars(text.data() + start, text.data() + text.size(), value).ec;
    if (error != std::errc{})
        return std::nullopt;
    return negative ? -value : value;
}

double NumericValue(std::string_view text) {
    return LeadingNumber(text).value_or(0.0);
}

std::int16_t WholeNumber16(std::string_view text, std::string_view what) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(WholeNumber(text, what, Limits::min(), Limits::max()));
}

std::int32_t WholeNumber32(std::string_view text, std::string_view what) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(WholeNumber(text, what, Limits::min(), Limits::max()));
}

std::optional<std::int32_t> CappedNumber(std::string_view digits) {
    if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    std::int32_t value = 0;
    const auto error = std::from_chars(digits.data(), digits.data() + digits.size(), value).ec;
    return error == std::errc{} ? value : std::numeric_limits<std::int32_t>::max();
}

std::int16_t ToInt16(std::int64_t value, std::string_view what) {
    if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
        throw RuntimeFailure("Overflow: " + std::string(what) + " " + std::to_string(value) +
                             " does not fit into 16 bits.");
    return static_cast<std::int16_t>(value);
}

std::string FormatNumber(double value, int minIntegerDigits, int decimals) {
    if (!std::isfinite(value))
        throw RuntimeFailure("Overflow: the number is too large to be shown.");
    Decimal decimal = ToDecimal(value);
    // Digits that stay: those up to the last decimal place asked for.
    const int keep = decimal.Exponent + 1 + decimals;
    std::string digits = keep > 0 ? FixedText(decimal.Digits, static_cast<std::size_t>(keep)) : std::string();
    std::replace(digits.begin(), digits.end(), ' ', '0');
    digits = PadLeft(digits, static_cast<std::size_t>(decimals), '0');
    if (keep >= 0 && static_cast<std::size_t>(keep) < decimal.Digits.size() &&
        decimal.Digits[static_cast<std::size_t>(keep)] >= '5') {
        digits.insert(0, "0");
        auto digit = digits.rbegin();
        for (; *digit == '9'; ++digit)
            *digit = '0';
        ++*digit;
    }
    const auto point = digits.size() - static_cast<std::size_t>(decimals);
    std::string whole = digits.substr(0, point);
    whole.erase(0, std::min(whole.find_first_not_of('0'), whole.size()));
    whole = PadLeft(whole, static_cast<std::size_t>(minIntegerDigits), '0');
    const bool negative = value < 0 && digits.find_first_not_of('0') != std::string::npos;
    return (negative ? "-" : "") + whole + (decimals > 0 ? "." + digits.substr(point) : std::string());
}

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (const char character : text)
        quoted += character == '"' ? "\"\"" : std::string(1, character);
    return quoted + '"';
}

std::string ShownNumber(std::string text, const std::string& separator) {
    if (const auto point = text.find('.'); point != std::string::npos)
        text.replace(point, 1, separator);
    return text;
}

void NormalizeDecimalPoint(std::string& text, const std::string& separator) {
    if (separator.empty() || separator == ".")
        return;
    for (auto at = text.find(separator); at != std::string::npos; at = text.find(separator, at + 1))
        text.replace(at, separator.size(), ".");
}

void FilterDigitKey(int& keyCode) {
    const bool digit = keyCode >= '0' && keyCode <= '9';
    if (!digit && keyCode != CarriageReturnKey && keyCode != BackspaceKey)
        keyCode = 0;
}

void FilterSignedNumberKey(int& keyCode, const std::string& decimalSeparator) {
    const bool sign = keyCode == '+' || keyCode == '-';
    if (!sign && (keyCode <= 0 || Utf8(static_cast<char32_t>(keyCode)) != decimalSeparator))
        FilterDigitKey(keyCode);
}

} // namespace kavro
