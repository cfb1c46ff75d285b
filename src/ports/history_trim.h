#pragma once

#include "ports/history_schema.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Deletes what is too old of a line in a history, at the start and then once an hour: of this line alone, as
/// other lines in the file may be kept for longer. Their room in the file is used again; the file does not
/// shrink. After a leap of the clock, also since the last run, it waits for an hour: what a clock that is set
/// wrong makes old is not.
class HistoryTrim {
public:
    /// Before the first reading of this run is stored, as the newest of the last run is looked for. Throws
    /// `SqlFailure`.
    HistoryTrim(const HistoryConnection& connection, std::string line, int keepDays);

    /// Deletes for some 10 ms, and what the commit takes, what is due; cheap when nothing is. Throws
    /// `SqlFailure`.
    void Slice(const HistoryConnection& connection, std::int64_t nowMs);

private:
    bool Trusts(std::int64_t nowMs);
    bool Due(std::int64_t nowMs) const;
    bool DeleteSome(const HistoryConnection& connection);

    std::string line_;
    int keepDays_;
    bool going_ = false;
    std::optional<std::int64_t> lastMs_;       // moment of the reading before
    std::int64_t evenSinceMs_ = INT64_MIN / 2; // of the last leap
    std::int64_t begunMs_ = INT64_MIN;
    std::string before_;             // what is older goes
    std::vector<HistoryValue> left_; // values whose readings are still to be looked at
};

} // namespace kavro
