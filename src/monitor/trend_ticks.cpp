#include "monitor/trend_ticks.h"

#include <algorithm>

namespace kavro {

TrendTicks::TrendTicks(const std::vector<ValueKey>& keys) {
    for (const ValueKey& key : keys)
        ticks_.push_back({key});
}

bool TrendTicks::Toggle(const ValueKey& key) {
    if (const auto found = std::ranges::find(ticks_, key, &TrendTick::Key); found != ticks_.end()) {
        ticks_.erase(found);
        return false;
    }
    ticks_.push_back({key, true, FreeStyle()});
    return true;
}

void TrendTicks::Show(const std::function<bool(const ValueKey& key)>& canBeShown) {
    for (TrendTick& tick : ticks_)
        if (tick.Shown && !canBeShown(tick.Key))
            tick.Shown = false;
    for (TrendTick& tick : ticks_)
        if (!tick.Shown && canBeShown(tick.Key)) {
            tick.Style = FreeStyle();
            tick.Shown = true;
        }
}

const TrendTick* TrendTicks::Find(const ValueKey& key) const {
    const auto found = std::ranges::find(ticks_, key, &TrendTick::Key);
    return found != ticks_.end() && found->Shown ? &*found : nullptr;
}

std::vector<ValueKey> TrendTicks::Keys() const {
    std::vector<ValueKey> keys;
    for (const TrendTick& tick : ticks_)
        keys.push_back(tick.Key);
    return keys;
}

// The other lines keep their colours when a tick is taken away.
int TrendTicks::FreeStyle() const {
    const auto taken = [this](int style) {
        return std::ranges::any_of(
            ticks_, [style](const TrendTick& tick) { return tick.Shown && tick.Style == style; });
    };
    int style = 0;
    while (taken(style))
        ++style;
    return style;
}

} // namespace kavro
