#include "monitor/crossings.h"

#include "map/list_line.h"
#include "monitor/csv_log.h"

namespace kavro {

namespace {

std::optional<double> LimitOf(const Thresholds& thresholds, Side side) {
    return side == Side::Above ? thresholds.High : side == Side::Below ? thresholds.Low : std::nullopt;
}

} // namespace

std::vector<Crossing> CrossingWatch::Take(const Session& session, int index,
                                          const std::vector<ChannelValue>& values, const WallTime& time) {
    const ModuleRecord& record = session.ModuleTable[index];
    std::vector<Crossing> crossings;
    for (const ChannelValue& value : values) {
        const Thresholds thresholds = ThresholdsOf(session, index, value);
        if (thresholds == Thresholds{})
            stands_.erase({index, value.Channel});
        if (thresholds == Thresholds{} || value.State != ValueState::Ok || !value.Number)
            continue;
        Stand& stand = stands_[{index, value.Channel}];
        const Side from = stand.Side;
        const Side to = SideOf(thresholds, value.Number);
        // A threshold that was taken away meanwhile is the one that it had been beyond.
        stand = {to, LimitOf(thresholds, to == Side::Within ? from : to).value_or(stand.Limit)};
        if (to != from)
            crossings.push_back({{time, record.Address, Trim(ShownModel(record.Model)), value},
                                 NameOfValue(session, index, value),
                                 TagText(session, index, value),
                                 from,
                                 to,
                                 stand.Limit});
    }
    Keep(crossings);
    return crossings;
}

void CrossingWatch::Keep(const std::vector<Crossing>& crossings) {
    kept_.insert(kept_.end(), crossings.begin(), crossings.end());
    for (; kept_.size() > MostKept; ++gone_)
        kept_.pop_front();
}

void CrossingWatch::Clear() {
    gone_ += static_cast<std::int64_t>(kept_.size());
    kept_.clear();
}

} // namespace kavro
