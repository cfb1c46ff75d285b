#include "loop/change_watch.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr double ChangeShare = 0.05;  // of the full scale
constexpr double StillShare = 0.0025; // a signal that turns around is not as still as that for so long:
constexpr std::int64_t StillUs =
    3000000; // one that swings over the range in half a minute moves twice as far
constexpr std::size_t MostSeen = 6;

} // namespace

void ChangeWatch::Take(std::int64_t moment, const SeenValue& value) {
    samples_.push_back({moment, value.Number});
    // One that is older than the span stays, so that it is known to be covered.
    while (samples_.size() > 2 && moment - samples_[1].Moment >= StillUs)
        samples_.pop_front();
    if (seen_.empty())
        return Remember(value);
    const bool still = StandsStill();
    restless_ = restless_ && !still;
    if (still && HasLeft(value.Number))
        Remember(value);
}

ChangeState ChangeWatch::State() const {
    if (samples_.empty() || seen_.empty())
        return ChangeState::Waiting;
    if (HasLeft(samples_.back().Number))
        return ChangeState::Moving;
    return seen_.size() > 1 ? ChangeState::Steady : ChangeState::Waiting;
}

bool ChangeWatch::HasLeft(double number) const {
    const double way = std::abs(number - seen_.back().Number);
    return fullScale_ > 0 ? way >= ChangeShare * fullScale_ : way > 0;
}

bool ChangeWatch::StandsStill() const {
    if (fullScale_ <= 0)
        return true;
    if (samples_.back().Moment - samples_.front().Moment < StillUs)
        return false;
    const auto [least, most] = std::ranges::minmax(samples_, {}, &Sample::Number);
    return most.Number - least.Number <= StillShare * fullScale_;
}

void ChangeWatch::Remember(const SeenValue& value) {
    if (seen_.size() == MostSeen) // where it stood first stays
        seen_.erase(seen_.begin() + 1);
    seen_.push_back(value);
}

} // namespace kavro
