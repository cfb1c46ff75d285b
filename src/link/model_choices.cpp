#include "link/model_choices.h"

#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"

namespace kavro {

std::vector<std::int16_t> RangeCodes(std::string_view model) {
    const AnalogSide& choices = RowOfModel(model).Analog;
    std::vector<std::int16_t> codes;
    for (std::int16_t code = choices.FirstRange; code <= choices.LastRange; ++code)
        if (!Trim(RangeName(code)).empty())
            codes.push_back(code);
    return codes;
}

std::vector<std::int16_t> FormatCodes(std::string_view model) {
    const unsigned formats = RowOfModel(model).Analog.Formats;
    std::vector<std::int16_t> codes;
    for (std::int16_t code = EngineeringUnits; code <= Ohms; ++code)
        if ((formats >> code & 1U) != 0)
            codes.push_back(code);
    return codes;
}

std::int16_t RangeCodeNamed(std::string_view model, std::string_view name) {
    const AnalogSide& choices = RowOfModel(model).Analog;
    std::int16_t code = choices.FirstRange;
    while (code <= choices.LastRange && Trim(RangeName(code)) != Trim(name))
        ++code;
    return code;
}

} // namespace kavro
