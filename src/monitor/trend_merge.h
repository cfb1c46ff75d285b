#pragma once

#include "monitor/trend_column.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// Columns of a value that were read from a history, for the stretch that was asked for.
struct KeptStretch {
    std::int64_t FromMs = 0, ToMs = 0; ///< `ToMs` not inclusive
    std::int64_t ColumnMs = 0;
    std::vector<TrendColumn> Columns;
};

/// The columns of the memory, with those of the history in their place where it was asked: each reading once.
std::vector<TrendColumn> MergeColumns(const std::vector<TrendColumn>& memory, const KeptStretch& kept);

/// Breaks the line at pauses in which nobody read: between two runs of the program, or while the computer
/// slept. A pause is longer than ten minutes and than ten times the distance of the readings before it.
void BreakAtPauses(std::vector<TrendColumn>& columns);

/// A curve as it is written to a CSV file.
struct TrendCurve {
    std::string Name;
    std::string Unit;
    std::vector<TrendColumn> Columns;
};

/// Curves as a CSV file: "time", then the least and the most of each curve; a line per column of time, with
/// the local time at which it begins and nothing where a curve has no reading.
std::string TrendCsv(const std::vector<TrendCurve>& curves);

} // namespace kavro
