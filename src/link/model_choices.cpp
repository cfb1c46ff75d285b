#include "link/model_choices.h"

#include "link/codes.h"
#include "link/text.h"

#include <algorithm>

namespace kavro {

namespace {

struct ModelChoices {
    std::string_view Suffix;
    std::int16_t FirstRange, LastRange;
    unsigned Formats; // bit n: data format n
};

constexpr unsigned AllButOhms = 1U << EngineeringUnits | 1U << PercentOfRange | 1U << TwosComplement;

constexpr ModelChoices Choices[] = {
    {"210", 0x00, 0x16, AllButOhms},
    {"220", 0x08, 0x0D, AllButOhms},
    {"230", 0x20, 0x2A, 1U << EngineeringUnits | 1U << Ohms},
    {"240", 0x08, 0x0D, AllButOhms},
    {"250", 0x08, 0x0D, AllButOhms},
    {"260", 0x00, 0x16, AllButOhms},
    {"310", 0x30, 0x32, AllButOhms},
    {"320", 0x33, 0x33, 1U << EngineeringUnits},
};

constexpr ModelChoices NoChoices = {"", 0, -1, 0};

const ModelChoices& ChoicesOf(std::string_view model) {
    const std::string suffix = ModelSuffix(model);
    const auto* found = std::ranges::find(Choices, std::string_view(suffix), &ModelChoices::Suffix);
    return found == std::end(Choices) ? NoChoices : *found;
}

} // namespace

std::vector<std::int16_t> RangeCodes(std::string_view model) {
    const ModelChoices& choices = ChoicesOf(model);
    std::vector<std::int16_t> codes;
    for (std::int16_t code = choices.FirstRange; code <= choices.LastRange; ++code)
        if (!Trim(RangeName(code)).empty())
            codes.push_back(code);
    return codes;
}

std::vector<std::int16_t> FormatCodes(std::string_view model) {
    std::vector<std::int16_t> codes;
    for (std::int16_t code = EngineeringUnits; code <= Ohms; ++code)
        if ((ChoicesOf(model).Formats >> code & 1U) != 0)
            codes.push_back(code);
    return codes;
}

std::int16_t RangeCodeNamed(std::string_view model, std::string_view name) {
    const ModelChoices& choices = ChoicesOf(model);
    std::int16_t code = choices.FirstRange;
    while (code <= choices.LastRange && Trim(RangeName(code)) != Trim(name))
        ++code;
    return code;
}

} // namespace kavro
