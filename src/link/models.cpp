#include "link/models.h"

#include "link/codes.h"

#include <algorithm>

namespace kavro {

namespace {

using enum ModelKind;

constexpr unsigned EngineeringAlone = 1U << EngineeringUnits;
constexpr unsigned EngineeringAndOhms = EngineeringAlone | 1U << Ohms;
constexpr unsigned AllButOhms = EngineeringAlone | 1U << PercentOfRange | 1U << TwosComplement;
constexpr bool WithColdJunction = true;
constexpr bool WithOpenStatus = true;

constexpr ModelRow Rows[] = {
    // analog: channels, ranges, formats
    {"8210", AlarmInput, {1, 0x00, 0x16, AllButOhms, WithColdJunction}},
    {"8220", AlarmInput, {1, 0x08, 0x0D, AllButOhms}},
    {"8230", MultiInput, {3, 0x20, 0x2A, EngineeringAndOhms}},
    {"8240", AlarmInput, {1, 0x08, 0x0D, AllButOhms}},
    {"8250", MultiInput, {8, 0x08, 0x0D, AllButOhms}},
    {"8260", MultiInput, {8, 0x00, 0x16, AllButOhms, WithColdJunction, WithOpenStatus}},
    {"8310", SingleOutput, {0, 0x30, 0x32, AllButOhms}},
    {"8320", PortOutputs, {0, 0x33, 0x33, EngineeringAlone}},
    // digital: inputs, outputs
    {"8410", DigitalLines, {}, {8, 8}},
    {"8420", DigitalLines, {}, {16, 0}},
    {"8430", DigitalLines, {}, {0, 16}},
    {"8440", DigitalLines, {}, {8, 0}},
    {"8450", DigitalLines, {}, {7, 8}},
    {"8460", PortLines},
    {"8470", DigitalLines, {}, {4, 4}},
    {"8480", DigitalLines, {}, {0, 8}},
    {"8490", DigitalLines, {}, {4, 8}},
    {"8510", Counting},
    {"8610", Converting},
    {"8620", Converting},
};

constexpr ModelRow AnyOther = {"", Unknown};

} // namespace

std::span<const ModelRow> KnownModelRows() {
    return Rows;
}

const ModelRow& RowOfModel(std::string_view model) {
    const std::string suffix = ModelSuffix(model);
    const auto* const found =
        std::ranges::find(Rows, suffix, [](const ModelRow& row) { return row.Name.substr(1); });
    return found == std::end(Rows) ? AnyOther : *found;
}

} // namespace kavro
