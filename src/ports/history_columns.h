#pragma once

#include "monitor/trend_history.h"
#include "ports/history_schema.h"

#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// Reads what a question asks for of a line, reading by reading: one range of the table's key. A reading
/// without a value breaks the line behind the column before it; time that passed without any does not. Ends
/// early, with some of the columns, when `stop`, which is asked at every reading, says so. Throws
/// `SqlFailure`.
std::vector<TrendColumn> ReadColumns(const HistoryConnection& connection, const std::string& line,
                                     const HistoryQuestion& question, const std::function<bool()>& stop);

} // namespace kavro
