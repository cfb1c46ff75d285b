#pragma once

#include "monitor/back_off.h"
#include "monitor/module_values.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kavro {

/// A value as a monitor shows it.
struct MonitoredValue {
    ChannelValue Value;                 ///< what was last read; after a failure with the state of the failure
    std::optional<std::int64_t> GoodAt; ///< moment of the clock (ms) at which it was read; nothing yet
};

/// What one turn of a monitor read.
struct MonitorTurn {
    int Index = 0;                    ///< of the module's entry
    std::vector<ChannelValue> Values; ///< empty for a model without values
    bool EndsRound = false;           ///< of the last module that was due in its round
};

/// Reads the modules of the map in rounds, one per turn, and keeps what they said. Its memory does not grow
/// with time.
///
/// A round is one turn of every module that is due. A module of which a turn brought nothing, though
/// something was to be read, backs off: it has no turn until `BackOff` says so, and every turn again as soon
/// as one brings a value. A module without values to read, or with all channels disabled, does not fail.
class Monitor {
public:
    explicit Monitor(Session& session) : session_(session), modules_(ModuleTable::Size) {}

    /// Makes one transaction of the turn on the next module; what was read when the turn ended with it. Then
    /// comes the next one that is due, also when this one failed. Nothing, too, when no module is due: only
    /// whether the port is there is looked at then, in a millisecond. Throws `RuntimeFailure` when the port
    /// fails, which is no failure of the module: it is then read again from its beginning.
    std::optional<MonitorTurn> Step();

    /// Milliseconds until a module is due: 0 now, INT64_MAX when there is none to be read.
    std::int64_t DueInMs() const;

    /// From now on modules at these addresses are not read, and what is known of them is forgotten; all
    /// others are. One that was left out until now is due at once.
    void LeaveOut(std::set<std::int16_t> addresses);

    /// Whether a turn is going on.
    bool InTurn() const { return reader_ != nullptr; }

    /// `Step` to the end of the turn.
    std::optional<MonitorTurn> Tick();

    /// Marks every value as lost, because the line itself is.
    void LineLost();

    /// The turn of the next module while the line is lost, due or not: nothing is sent, every value is
    /// `Lost`. `Step` goes on where the line was lost. Nothing when there is none to be read.
    std::optional<MonitorTurn> LostTurn();

    /// The values of entry `index`; empty before its first turn.
    const std::vector<MonitoredValue>& Values(int index) const;

    /// State of entry `index` in words: "not read" when it is left out, "waiting" before its first turn, "no
    /// values", else the worst state of its values, of which "disabled" is the best.
    std::string State(int index) const;

    /// Milliseconds since value number `place` of entry `index` was read; nothing when it never was.
    std::optional<std::int64_t> AgeMs(int index, std::size_t place) const;

    /// Age of the oldest value of entry `index` whose channel is not disabled.
    std::optional<std::int64_t> AgeMs(int index) const;

private:
    struct Module {
        bool Asked = false;
        std::vector<MonitoredValue> Values;
        std::optional<unsigned> Enables;
        kavro::BackOff BackOff;
    };

    const Module& At(int index) const { return modules_.at(static_cast<std::size_t>(index)); }
    Module& At(int index) { return modules_.at(static_cast<std::size_t>(index)); }
    bool IsRead(int index) const { return !leftOut_.contains(session_.ModuleTable[index].Address); }
    int NextRead(int from) const;
    std::optional<int> NextDue(int from) const;
    bool BeginTurn();
    void LookAtPort();
    MonitorTurn NotReached();
    MonitorTurn EndTurn(std::vector<ChannelValue> values);
    void Keep(Module& module, const std::vector<ChannelValue>& values) const;
    std::int64_t Now() const { return session_.Line.Time().GetTickCount(); }

    Session& session_;
    std::vector<Module> modules_;          // as the entries of the map
    std::set<std::int16_t> leftOut_;       // addresses
    std::unique_ptr<ModuleReader> reader_; // of the turn that goes on
    int next_ = 0;               // module of the turn that goes on, or the first that may have the next one
    int lost_ = 0;               // the next turn of a line that is lost
    bool asked_ = false;         // a module was asked something in this round
    std::int64_t restUntil_ = 0; // ms; no round begins before
};

} // namespace kavro
