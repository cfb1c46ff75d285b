#include "monitor/value_text.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "monitor/shown_unit.h"

#include <algorithm>

namespace kavro {

namespace {

struct AgeUnit {
    std::int64_t BelowMs; // of this age the next unit is taken
    std::int64_t Ms;
    const char* Name;
};

constexpr AgeUnit AgeUnits[] = {{120'000, 1000, " s"},
                                {7'200'000, 60'000, " min"},
                                {172'800'000, 3'600'000, " h"},
                                {INT64_MAX, 86'400'000, " days"}};

bool IsNumber(const std::string& channel) {
    return channel.size() == 1 && channel[0] >= '0' && channel[0] <= '9';
}

} // namespace

std::string ModuleText(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    return ShownAddress(record.Address) + " " + Trim(ShownModel(record.Model));
}

bool ShowsNumber(const MonitoredValue& value) {
    return value.Value.State != ValueState::Disabled && value.GoodAt.has_value();
}

std::string ValueText(const MonitoredValue& value, const std::string& separator) {
    const std::string name = IsNumber(value.Value.Channel) ? "" : value.Value.Channel + ": ";
    const std::string text =
        ShowsNumber(value) ? ShownNumber(value.Value.Text, separator) + " " + ShownUnit(value.Value.Unit)
                           : StateText(value.Value.State);
    return name + Trim(text);
}

std::string AgeText(std::optional<std::int64_t> ageMs, const std::string& separator) {
    constexpr std::int64_t tenths = 10'000; // up to here
    if (!ageMs)
        return {};
    if (*ageMs < tenths)
        return ShownNumber(FormatNumber(static_cast<double>(*ageMs) / 1000, 1, 1), separator) + " s";
    const auto* unit = std::ranges::find_if(AgeUnits, [&](const AgeUnit& at) { return *ageMs < at.BelowMs; });
    return std::to_string(*ageMs / unit->Ms) + unit->Name;
}

} // namespace kavro
