#pragma once

#include "monitor/trend_column.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// What a look back is about: a value over a stretch of time, in columns.
struct HistoryQuestion {
    std::int16_t Address = 0;
    std::string Channel;
    std::int64_t FromMs = 0;   ///< UTC, inclusive
    std::int64_t ToMs = 0;     ///< UTC, not inclusive
    std::int64_t ColumnMs = 0; ///< width of a column; columns begin at multiples of it

    bool operator==(const HistoryQuestion&) const = default;
};

/// What it brought: columns in order of time, those without a reading left out; or why it could not be read.
struct HistoryAnswer {
    std::vector<TrendColumn> Columns;
    std::string Failure; ///< empty when all went well
};

/// The readings that are kept on disk, as a trend looks back into them.
class TrendHistory {
public:
    TrendHistory() = default;
    virtual ~TrendHistory() = default;
    TrendHistory(const TrendHistory&) = delete;
    TrendHistory& operator=(const TrendHistory&) = delete;

    /// Begins to read what the questions ask for and returns at once. `done` is called later from the event
    /// loop of the caller, with an answer for each question in their order. Questions that are asked before
    /// `done` came take the place of those, whose `done` is then never called.
    virtual void Ask(std::vector<HistoryQuestion> questions,
                     std::function<void(std::vector<HistoryAnswer> answers)> done) = 0;
};

} // namespace kavro
