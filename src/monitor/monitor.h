#pragma once

#include "monitor/module_values.h"

#include <cstdint>
#include <memory>
#include <optional>
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
};

/// Reads the modules of the map in rounds, one per turn, and keeps what they said. Its memory does not grow
/// with time.
class Monitor {
public:
    explicit Monitor(Session& session) : session_(session), modules_(ModuleTable::Size) {}

    /// Makes one transaction of the turn on the next module; what was read when the turn ended with it. Then
    /// comes the module after it, also when this one failed: a silent module costs one time-out a round.
    /// Nothing when the map is empty. Throws `RuntimeFailure` when the port fails; the same module is then
    /// read again from its beginning.
    std::optional<MonitorTurn> Step();

    /// Whether a turn is going on.
    bool InTurn() const { return reader_ != nullptr; }

    /// `Step` to the end of the turn.
    std::optional<MonitorTurn> Tick();

    /// Marks every value as lost, because the line itself is.
    void LineLost();

    /// The turn of the next module while the line is lost: nothing is sent, every value is `Lost`. `Step`
    /// goes on where the line was lost.
    std::optional<MonitorTurn> LostTurn();

    /// The values of entry `index`; empty before its first turn.
    const std::vector<MonitoredValue>& Values(int index) const;

    /// State of entry `index` in words: "waiting" before its first turn, "no values", else the worst state of
    /// its values, of which "disabled" is the best.
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
    };

    const Module& At(int index) const { return modules_.at(static_cast<std::size_t>(index)); }
    MonitorTurn NotReached(Module& module);
    void Keep(Module& module, const std::vector<ChannelValue>& values) const;
    std::int64_t Now() const { return session_.Line.Time().GetTickCount(); }

    Session& session_;
    std::vector<Module> modules_;          // as the entries of the map
    std::unique_ptr<ModuleReader> reader_; // of the turn that goes on
    int next_ = 0;
    int lost_ = 0; // the next turn of a line that is lost
};

} // namespace kavro
