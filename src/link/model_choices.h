#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace kavro {

/// Codes of the named ranges that an analog model has, ascending; none for other models. Two codes may carry
/// the same name.
std::vector<std::int16_t> RangeCodes(std::string_view model);

/// Codes of the data formats that an analog model has, ascending.
std::vector<std::int16_t> FormatCodes(std::string_view model);

/// The first code in the model's span of ranges whose trimmed name equals the trimmed `name`; one past the
/// end of the span when none does. A blank name is found where the span has a code without a name.
std::int16_t RangeCodeNamed(std::string_view model, std::string_view name);

} // namespace kavro
