#pragma once

#include "map/monitor_preferences.h"

#include <functional>
#include <vector>

namespace kavro {

/// A value that the user has ticked for the trend.
struct TrendTick {
    ValueKey Key;
    bool Shown = false; ///< the line has the value, and its module is read
    int Style = 0;      ///< of its line, while it is shown
};

/// Which values are ticked, in the order of ticking. Those that are not shown stay ticked, and keep no style
/// from those that are.
class TrendTicks {
public:
    /// `keys` are ticked; none of them is shown yet.
    explicit TrendTicks(const std::vector<ValueKey>& keys);

    /// Takes the value with a tick out, or ticks it; whether it is ticked now.
    bool Toggle(const ValueKey& key);

    /// Says which values can be shown. Lines that stay keep their styles.
    void Show(const std::function<bool(const ValueKey& key)>& canBeShown);

    /// The tick of a value that is shown; null when it has none.
    const TrendTick* Find(const ValueKey& key) const;

    const std::vector<TrendTick>& All() const { return ticks_; }
    std::vector<ValueKey> Keys() const;

private:
    int FreeStyle() const;

    std::vector<TrendTick> ticks_;
};

} // namespace kavro
