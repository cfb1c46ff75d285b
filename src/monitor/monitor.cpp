#include "monitor/monitor.h"

#include "link/runtime_failure.h"
#include "map/module_access.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kavro {

namespace {

constexpr std::int64_t NoneMs = INT64_MAX;
constexpr std::int64_t EmptyRoundMs = 100; // so that rounds in which nothing is asked do not follow at once

// Whether values were to be read and not one came; of a sensor that is open there is an answer.
bool HasFailed(const std::vector<ChannelValue>& values) {
    const auto answered = [](const ChannelValue& value) {
        return value.State == ValueState::Ok || value.State == ValueState::Open;
    };
    return std::ranges::any_of(values, IsMissing) && std::ranges::none_of(values, answered);
}

} // namespace

std::optional<MonitorTurn> Monitor::Step() {
    if (session_.ModuleCount <= 0 || !BeginTurn())
        return std::nullopt;
    auto reader = std::exchange(reader_, nullptr); // a failing port ends the turn
    try {
        if (!reader->Done()) { // a model without values has nothing to send
            asked_ = true;
            reader->Step();
        }
    } catch (const RateRefused&) {
        return NotReached(); // the others may have another rate
    }
    if (!reader->Done()) {
        reader_ = std::move(reader);
        return std::nullopt;
    }
    return EndTurn(std::move(reader->Values));
}

// False when no module is due.
bool Monitor::BeginTurn() {
    lost_ = next_;
    if (reader_)
        return true;
    if (Now() < restUntil_)
        return false;
    auto next = NextDue(next_);
    if (!next)
        next = NextDue(0); // nothing is left of the round, as modules were left out in it
    if (!next) {
        LookAtPort();
        return false;
    }
    next_ = lost_ = *next;
    reader_ = std::make_unique<ModuleReader>(session_, next_, At(next_).Enables);
    return true;
}

// A port that is lost while nothing is due would else be noticed a minute later.
void Monitor::LookAtPort() {
    if (DueInMs() == NoneMs)
        return;
    OpenPort(session_.Line);
    session_.Line.StaysSilent(1);
}

MonitorTurn Monitor::EndTurn(std::vector<ChannelValue> values) {
    Module& module = At(next_);
    module.Asked = true;
    Keep(module, values);
    if (HasFailed(values))
        module.BackOff.Failed(Now());
    else
        module.BackOff.Succeeded();
    MonitorTurn turn{next_, std::move(values), !NextDue(next_ + 1)};
    next_ = turn.EndsRound ? 0 : next_ + 1;
    if (turn.EndsRound && !std::exchange(asked_, false))
        restUntil_ = Now() + EmptyRoundMs;
    return turn;
}

// The turn of a module whose baud rate the port does not take: nothing was sent.
MonitorTurn Monitor::NotReached() {
    std::optional<unsigned> enables = At(next_).Enables;
    std::vector<ChannelValue> values = ModuleReader(session_, next_, enables).Values;
    for (ChannelValue& value : values)
        value.State = ValueState::NoReply;
    return EndTurn(std::move(values));
}

// `ModuleCount` when there is none from there on.
int Monitor::NextRead(int from) const {
    while (from < session_.ModuleCount && !IsRead(from))
        ++from;
    return from;
}

std::optional<int> Monitor::NextDue(int from) const {
    const std::int64_t now = Now();
    for (int index = NextRead(from); index < session_.ModuleCount; index = NextRead(index + 1))
        if (At(index).BackOff.DueInMs(now) == 0)
            return index;
    return std::nullopt;
}

std::int64_t Monitor::DueInMs() const {
    if (reader_)
        return 0;
    const std::int64_t now = Now();
    std::int64_t due = NoneMs;
    for (int index = NextRead(0); index < session_.ModuleCount; index = NextRead(index + 1))
        due = std::min(due, At(index).BackOff.DueInMs(now));
    return std::max(due, restUntil_ - now);
}

void Monitor::LeaveOut(std::set<std::int16_t> addresses) {
    leftOut_ = std::move(addresses);
    for (int index = 0; index < session_.ModuleCount; ++index)
        if (!IsRead(index)) {
            if (index == next_)
                reader_.reset();
            At(index) = {};
        }
}

std::optional<MonitorTurn> Monitor::Tick() {
    auto turn = Step();
    while (InTurn())
        turn = Step();
    return turn;
}

std::optional<MonitorTurn> Monitor::LostTurn() {
    const int count = session_.ModuleCount;
    int index = NextRead(lost_);
    if (index >= count)
        index = NextRead(0);
    if (index >= count)
        return std::nullopt;
    std::optional<unsigned> enables = At(index).Enables;
    lost_ = index + 1;
    MonitorTurn turn{index, ModuleReader(session_, index, enables).Values, NextRead(lost_) >= count};
    for (std::size_t place = 0; place < turn.Values.size(); ++place) {
        const bool disabled = enables && (*enables >> place & 1U) == 0;
        turn.Values[place].State = disabled ? ValueState::Disabled : ValueState::Lost;
    }
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
    if (!IsRead(index))
        return "not read";
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
