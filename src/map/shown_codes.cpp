#include "map/shown_codes.h"

#include "link/codes.h"
#include "link/model_choices.h"
#include "link/text.h"
#include "map/list_line.h"

#include <vector>

namespace kavro {

namespace {

// What a field can be.
struct FieldChoice {
    std::int16_t ModuleRecord::*Field;
    std::vector<std::int16_t> Values;
};

std::vector<FieldChoice> ChoicesOf(const std::string& model) {
    switch (ModuleFamily(model)) {
    case AnalogInput:
    case AnalogOutput:
    case MultiAnalogInput:
        return {{&ModuleRecord::InputRange, RangeCodes(model)},
                {&ModuleRecord::DataFormat, FormatCodes(model)}};
    case CounterFrequency:
        return {{&ModuleRecord::InputRange, {CounterRange, FrequencyRange}}};
    case Converter:
        return {{&ModuleRecord::DataFormat, {0, 1, 2, 3}},
                {&ModuleRecord::ConverterParity, {0, 1, 3}},
                {&ModuleRecord::ConverterStopBits, {0, 1}},
                {&ModuleRecord::ConverterInterface, {0, 1}}};
    default:
        return {};
    }
}

// Gives each field the value that it has in combination `number`; false behind the last combination.
bool Choose(ModuleRecord& record, const std::vector<FieldChoice>& choices, std::size_t number) {
    for (const auto& [field, values] : choices) {
        if (values.empty())
            continue;
        record.*field = values[number % values.size()];
        number /= values.size();
    }
    return number == 0;
}

} // namespace

bool FindShownCodes(ModuleRecord& record, std::string_view line) {
    const auto choices = ChoicesOf(record.Model);
    const bool initialisation = line.starts_with('*');
    ModuleRecord chosen = record;
    for (std::size_t number = 0; Choose(chosen, choices, number); ++number)
        if (Trim(ListLine(chosen, initialisation)) == Trim(line)) {
            record = chosen;
            return true;
        }
    return false;
}

} // namespace kavro
