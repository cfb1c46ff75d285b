#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// How a module counts in one of its ranges.
struct RangeShape {
    int Code = 0;                      ///< wire type code
    double Low = 0, High = 1000;       ///< ends of the range, in its unit
    double FullScale = 1000;           ///< what 100 % and 7FFF stand for
    int IntegerDigits = 5;             ///< of an engineering reading, before the point
    int Decimals = 0;                  ///< and behind it
    double ZeroOhms = 0, UnitOhms = 1; ///< resistance at 0 and per unit, for sensors read in ohms
};

/// Shape of a wire type code; a code that is no analog range gives five whole digits.
RangeShape ShapeOf(int typeCode);

/// Value of a signal that sweeps the range slowly and without a jump; `place` sets its phase and pace, so
/// that channels differ. `moment` in microseconds.
double MovingValue(const RangeShape& shape, std::int64_t moment, int place);

/// A value in the range's engineering format, for example "+05.123".
std::string EngineeringText(double value, const RangeShape& shape);

/// A value in a data format: 0 engineering units, 1 percent of full scale, 2 two's complement (four
/// hexadecimal digits), 3 ohms.
std::string ReadingText(double value, const RangeShape& shape, int dataFormat);

/// Fixed-point number without sign, for example "04.012" with 2 digits before the point and 3 behind it.
std::string FixedText(double value, int integerDigits, int decimals);

/// Value of such a number; nothing unless it has exactly these digits and the point.
std::optional<double> FromFixedText(std::string_view text, int integerDigits, int decimals);

/// The same with a sign in front, which must be there.
std::optional<double> FromSignedText(std::string_view text, int integerDigits, int decimals);

/// Value of a trim count, two hexadecimal digits: a signed byte.
int TrimCount(std::string_view digits);

} // namespace kavro
