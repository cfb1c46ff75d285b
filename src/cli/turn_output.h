#pragma once

#include "cli/value_printer.h"
#include "monitor/reading.h"

namespace kavro {

/// Keeps the values of a monitor's turns in a history and prints them, at one and the same time.
class TurnOutput {
public:
    /// `history` may be null.
    TurnOutput(const Session& session, ValueForm form, ReadingSink* history)
        : session_(session), history_(history), printer_(session, form) {}

    /// Stores and prints values of entry `index` that were read now; false when nobody reads standard output
    /// any more. What is printed is in the history, or told not to be. Throws `RuntimeFailure` when standard
    /// output cannot be written.
    bool Print(int index, const std::vector<ChannelValue>& values) {
        const WallTime now = SystemTime();
        if (history_)
            history_->Take(ReadingsOf(session_, index, values, now));
        return printer_.Print(index, values, now);
    }

    /// Ends the output, which is whole then.
    void Close() { printer_.Close(); }

private:
    const Session& session_;
    ReadingSink* history_;
    ValuePrinter printer_;
};

} // namespace kavro
