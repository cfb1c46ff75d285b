#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// Families of module models, by their number.
enum Family : std::int16_t {
    DigitalIo = 0,
    AnalogInput = 1, ///< one channel, alarm outputs
    AnalogOutput = 2,
    MultiAnalogInput = 3, ///< several channels
    CounterFrequency = 4,
    Converter = 5, ///< communication converter
    UnknownFamily = 6,
};

/// Input-range codes with a meaning of their own.
inline constexpr std::int16_t CounterRange = 80;
inline constexpr std::int16_t FrequencyRange = 81;

/// Data formats of analog modules.
enum DataFormat : std::int16_t { EngineeringUnits = 0, PercentOfRange = 1, TwosComplement = 2, Ohms = 3 };

/// Characters 2 to 4 of the trimmed model text, all that classification looks at: "250" for "8250  ".
std::string ModelSuffix(std::string_view model);

/// Family 0 to 6 of a model text.
std::int16_t ModuleFamily(std::string_view model);

/// Number of analog input channels of a model; nothing when its read commands carry no channel number.
std::optional<std::int16_t> ChannelCount(std::string_view model);

/// Name of an input range, 16 characters padded with blanks; blank for a code without a name.
std::string RangeName(std::int16_t code);

/// Full scale of an input range in its unit; 0 for a code that has none.
double RangeFullScale(std::int16_t code);

/// Unit of an input range at a data format, 4 characters; empty for a code without one.
std::string RangeUnit(std::int16_t code, std::int16_t dataFormat);

/// Name of data format 0 to 3, 17 characters padded with blanks. Throws `RuntimeFailure` for any other.
std::string FormatName(std::int16_t dataFormat);

/// Name of alarm mode 0 to 2, 10 characters padded with blanks. Throws `RuntimeFailure` for any other.
std::string AlarmModeName(std::int16_t alarmMode);

/// A numeric text as sign and fixed-width number in the range's pattern, for example "+05.123". A value above
/// the pattern's limit is wrapped so that the text keeps its width. Throws `RuntimeFailure` when it is not a
/// number.
std::string FormatReading(std::string_view text, std::int16_t rangeCode);

} // namespace kavro
