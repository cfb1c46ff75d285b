#include "config/setting_words.h"

#include "config/setting_changes.h"
#include "link/codes.h"
#include "link/text.h"

#include <algorithm>
#include <iterator>

namespace kavro {

namespace {

constexpr std::string_view OfRange = "range"; // the unit is that of the module's range

struct SettingWords {
    std::string_view Name; // as `SettingNames` has it
    const char* Words;
    std::string_view Unit = {};
};

constexpr SettingWords Words[] = {
    {"model", "Model"},
    {"address", "Address"},
    {"baud", "Baud rate", "baud"},
    {"checksum", "Checksum"},
    {"range", "Input range"},
    {"format", "Data format"},
    {"channels", "Enabled channels"},
    {"alarm-mode", "Alarm mode"},
    {"low-alarm", "Low alarm limit", OfRange},
    {"high-alarm", "High alarm limit", OfRange},
    {"input-polarity", "Input polarity"},
    {"output-polarity", "Output polarity"},
    {"port-a", "Direction of port A"},
    {"port-b", "Direction of port B"},
    {"port-ch", "Direction of port C, high half"},
    {"port-cl", "Direction of port C, low half"},
    {"second-baud", "Baud rate of the other side", "baud"},
    {"data-bits", "Data bits"},
    {"parity", "Parity"},
    {"stop-bits", "Stop bits"},
    {"interface", "Interface"},
    {"type", "Type"},
    {"gate-time", "Frequency gate time"},
    {"input-mode", "Input mode"},
    {"gate-mode", "Gate mode"},
    {"filter", "Digital filter"},
    {"min-high", "Minimum width of a high signal", "\u00B5s"},
    {"min-low", "Minimum width of a low signal", "\u00B5s"},
    {"ttl-high", "TTL high trigger level", "V"},
    {"ttl-low", "TTL low trigger level", "V"},
    {"status-0", "Counter 0: status"},
    {"max-0", "Counter 0: maximum value"},
    {"initial-0", "Counter 0: initial value"},
    {"alarm-0", "Counter 0: alarm"},
    {"alarm-limit-0", "Counter 0: alarm value"},
    {"status-1", "Counter 1: status"},
    {"max-1", "Counter 1: maximum value"},
    {"initial-1", "Counter 1: initial value"},
    {"alarm-1", "Counter 1: alarm"},
    {"alarm-limit-1", "Counter 1: alarm value"},
};

std::string UnitIn(const NamedConfig& config, std::string_view unit) {
    if (unit != OfRange)
        return std::string(unit);
    const NamedSetting* const range = FindSetting(config, OfRange);
    if (!range || !range->Told)
        return {};
    const auto code = HexNumber(ValueText(range->Value()));
    return Trim(RangeUnit(static_cast<std::int16_t>(code.value_or(0)), EngineeringUnits));
}

} // namespace

std::string SettingInWords(std::string_view name, const std::string& model) {
    if (name == "range" && ModuleFamily(model) == AnalogOutput)
        return "Output range";
    const auto* row = std::ranges::find(Words, name, &SettingWords::Name);
    return row == std::end(Words) ? std::string() : row->Words;
}

std::string ValueInWords(const NamedConfig& config, const NamedSetting& setting) {
    const std::string value = ValueText(setting.Value()), remark = setting.Remark();
    if (!remark.empty())
        return remark + " (code " + value + ")";
    const auto* row = std::ranges::find(Words, setting.Name, &SettingWords::Name);
    const std::string unit = row == std::end(Words) ? std::string() : UnitIn(config, row->Unit);
    return unit.empty() ? value : value + " " + unit;
}

} // namespace kavro
