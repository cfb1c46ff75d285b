#include "monitor/monitor.h"

#include "link/runtime_failure.h"

#include <algorithm>
#include <utility>

namespace kavro {

std::optional<MonitorTurn> Monitor::Step() {
    if (session_.ModuleCount <= 0)
        return std::nullopt;
    next_ %= session_.ModuleCount;
    lost_ = next_;
    Module& module = modules_[static_cast<std::size_t>(next_)];
    auto reader = std::exchange(reader_, nullptr); // a failing port ends the turn
    if (!reader)
        reader = std::make_unique<ModuleReader>(session_, next_, module.Enables);
    try {
        if (!reader->Done()) // a model without values has nothing to send
            reader->Step();
    } catch (const RateRefused&) {
        return NotReached(module); // the others may have another rate
    }
    if (!reader->Done()) {
        reader_ = std::move(reader);
        return std::nullopt;
    }
    MonitorTurn turn{next_++, std::move(reader->Values)};
    module.Asked = true;
    Keep(module, turn.Values);
    return turn;
}

// The turn of a module whose baud rate the port does not take: nothing was sent.
MonitorTurn Monitor::NotReached(Module& module) {
    std::optional<unsigned> enables = module.Enables;
    MonitorTurn turn{next_, ModuleReader(session_, next_, enables).Values};
    ++next_;
    for (ChannelValue& value : turn.Values)
        value.State = ValueState::NoReply;
    module.Asked = true;
    Keep(module, turn.Values);
    return turn;
}

std::optional<MonitorTurn> Monitor::Tick() {
    auto turn = Step();
    while (InTurn())
        turn = Step();
    return turn;
}

std::optional<MonitorTurn> Monitor::LostTurn() {
    if (session_.ModuleCount <= 0)
        return std::nullopt;
    lost_ %= session_.ModuleCount;
    const Module& module = modules_[static_cast<std::size_t>(lost_)];
    std::optional<unsigned> enables = module.Enables;
    MonitorTurn turn{lost_, ModuleReader(session_, lost_, enables).Values};
    for (std::size_t place = 0; place < turn.Values.size(); ++place) {
        const bool disabled = enables && (*enables >> place & 1U) == 0;
        turn.Values[place].State = disabled ? ValueState::Disabled : ValueState::Lost;
    }
    ++lost_;
    return turn;
}

// A value that could not be read stays as it was, and ages; of an open sensor there is none.
void Monitor::Keep(Module& module, const std::vector<ChannelValue>& values) const {
    module.Values.resize(values.size());
    for (std::size_t place = 0; place < values.size(); ++place) {
        MonitoredValue& kept = module.Values[place];
        const ValueState state = values[place].State;
        if (state == ValueState::Open)
            kept.GoodAt.reset();
        if (state == ValueState::Ok || !kept.GoodAt)
            kept.Value = values[place];
        kept.Value.State = state;
        if (state == ValueState::Ok)
            kept.GoodAt = Now();
    }
}

void Monitor::LineLost() {
    for (Module& module : modules_)
        for (MonitoredValue& kept : module.Values)
            if (kept.Value.State != ValueState::Disabled)
                kept.Value.State = ValueState::Lost;
}

const std::vector<MonitoredValue>& Monitor::Values(int index) const {
    return At(index).Values;
}

std::string Monitor::State(int index) const {
    const Module& module = At(index);
    if (!module.Asked)
        return "waiting";
    if (module.Values.empty())
        return "no values";
    // From the best to the worst.
    constexpr ValueState order[] = {ValueState::Disabled, ValueState::Ok,      ValueState::Open,
                                    ValueState::Error,    ValueState::NoReply, ValueState::Lost};
    const auto rank = [&](const MonitoredValue& kept) {
        return std::ranges::find(order, kept.Value.State) - std::begin(order);
    };
    return StateText(std::ranges::max_element(module.Values, {}, rank)->Value.State);
}

std::optional<std::int64_t> Monitor::AgeMs(int index, std::size_t place) const {
    const auto& goodAt = At(index).Values.at(place).GoodAt;
    return goodAt ? std::optional(Now() - *goodAt) : std::nullopt;
}

std::optional<std::int64_t> Monitor::AgeMs(int index) const {
    std::optional<std::int64_t> oldest; // nothing is less than any age
    for (std::size_t place = 0; place < At(index).Values.size(); ++place)
        if (At(index).Values[place].Value.State != ValueState::Disabled)
            oldest = std::max(oldest, AgeMs(index, place));
    return oldest;
}

} // namespace kavro
