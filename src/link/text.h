#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// `text` without blanks at either end. Only the blank counts, as modules pad with nothing else.
std::string Trim(std::string_view text);

/// Characters `first` (counted from 1) and following, at most `count`; shorter or empty when the text ends
/// before.
std::string Middle(std::string_view text, std::size_t first, std::size_t count = std::string::npos);

/// At most `count` characters of a UTF-8 text.
std::string FirstCharacters(const std::string& text, std::size_t count);

/// `text` cut or padded on the right with blanks to `width` characters.
std::string FixedText(std::string_view text, std::size_t width);

/// `text` padded on the left with `fill` to at least `width` characters.
std::string PadLeft(std::string_view text, std::size_t width, char fill = ' ');

/// Whether two texts differ in the case of ASCII letters at most.
bool SameText(std::string_view left, std::string_view right);

/// Texts behind one another, with ", " between them.
std::string Listed(const std::vector<std::string>& texts);

/// Upper-case hexadecimal of `value`, padded with "0" on the left to `digits` characters and never cut:
/// a longer number keeps all its digits, a negative one gives eight.
std::string ToHex(std::int32_t value, std::int16_t digits);

/// `text` with every byte that is no printable ASCII character as its code: "<0A>". Nothing a module sends is
/// lost, and nothing can garble a display.
std::string VisibleText(std::string_view text);

/// Value of a one-character hexadecimal digit of either case; any other text gives 0.
std::int16_t HexDigitValue(std::string_view digit);

/// The whole text as a hexadecimal number of 1 to 8 digits; nothing when it is not one.
std::optional<std::uint32_t> HexNumber(std::string_view text);

/// The decimal number at the start of the text (leading blanks, sign, decimal point and exponent allowed),
/// whatever follows it; nothing when there is none or it exceeds the range of a double.
std::optional<double> LeadingNumber(std::string_view text);

/// The number at the start of the text, 0 when there is none.
double NumericValue(std::string_view text);

/// The whole text (blanks around it allowed) as a whole decimal number.
/// Throws `RuntimeFailure` when it is not one or does not fit; `what` names it in the description.
std::int16_t WholeNumber16(std::string_view text, std::string_view what);
std::int32_t WholeNumber32(std::string_view text, std::string_view what);

/// Digits and nothing else as a number; the largest of its type stands for any that is larger. Nothing for
/// another text.
std::optional<std::int32_t> CappedNumber(std::string_view digits);

/// Checked conversion to 16 bits. Throws `RuntimeFailure` on overflow; `what` names the value in the
/// description.
std::int16_t ToInt16(std::int64_t value, std::string_view what);

/// `value` with at least `minIntegerDigits` digits before the point and exactly `decimals` behind it, rounded
/// half away from zero on its 15 significant decimal digits (so that 1.0005 gives 1.001). "-" leads a
/// negative value.
std::string FormatNumber(double value, int minIntegerDigits, int decimals);

/// A text as a field of a CSV file (RFC 4180).
std::string CsvField(const std::string& text);

/// A number with a "." as it is shown to the user: with `separator`, the decimal separator of the locale.
std::string ShownNumber(std::string text, const std::string& separator);

/// Replaces every `separator` (the locale's decimal separator) in `text` by ".". So what the user types may
/// have either.
void NormalizeDecimalPoint(std::string& text, const std::string& separator);

/// Keeps the key codes of "0" to "9", carriage return and backspace; any other key becomes 0 (cancelled).
void FilterDigitKey(int& keyCode);

/// As `FilterDigitKey`, and also keeps "+", "-" and the locale's decimal separator.
void FilterSignedNumberKey(int& keyCode, const std::string& decimalSeparator);

} // namespace kavro
