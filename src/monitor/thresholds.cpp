#include "monitor/thresholds.h"

#include "map/list_line.h"
#include "map/module_access.h"

namespace kavro {

const char* SideText(Side side) {
    constexpr const char* texts[] = {"within", "below", "above"};
    return texts[static_cast<std::size_t>(side)];
}

const char* SideSign(Side side) {
    constexpr const char* signs[] = {"", "\u25bc", "\u25b2"};
    return signs[static_cast<std::size_t>(side)];
}

Side SideOf(const Thresholds& thresholds, const std::optional<double>& number) {
    if (number && thresholds.Low && *number < *thresholds.Low)
        return Side::Below;
    return number && thresholds.High && *number > *thresholds.High ? Side::Above : Side::Within;
}

ValueKey KeyOf(const Session& session, int index, const ChannelValue& value) {
    return {session.ModuleTable[index].Address, value.Channel};
}

Thresholds ThresholdsOf(const Session& session, int index, const ChannelValue& value) {
    const auto& all = session.Preferences.Monitor.Thresholds;
    const auto found = CanHaveThresholds(value) ? all.find(KeyOf(session, index, value)) : all.end();
    return found == all.end() ? Thresholds{} : found->second;
}

void SetThresholds(Session& session, const ValueKey& key, const Thresholds& thresholds) {
    Preferences changed = session.Preferences;
    if (thresholds == Thresholds{})
        changed.Monitor.Thresholds.erase(key);
    else
        changed.Monitor.Thresholds[key] = thresholds;
    session.SavePreferences(changed);
    session.Preferences = changed;
}

std::string NameOfValue(const Session& session, int index, const ChannelValue& value) {
    const ModuleRecord& record = session.ModuleTable[index];
    const bool number = value.Channel.size() == 1 && value.Channel[0] >= '0' && value.Channel[0] <= '9';
    const std::string tag = TagOfValue(session, index, value).Tag;
    return ShownAddress(record.Address) + " " + Trim(ShownModel(record.Model)) + (number ? " ch " : " ") +
           value.Channel + (tag.empty() ? tag : ", " + tag);
}

} // namespace kavro
