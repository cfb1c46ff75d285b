#pragma once

#include "project/line_comparison.h"

#include <string>
#include <vector>

namespace kavro {

/// One thing that is not on the line as it is in the file.
struct ComparisonRow {
    std::string Tag, Model, Address;
    std::string What; ///< "missing", "new", "other model", or the name of a setting
    std::string File, Line;
};

/// All of them, module by module in the order of the file, then the new modules.
std::vector<ComparisonRow> RowsOf(const LineComparison& comparison);

/// In a sentence: "3 of 26 modules differ, 1 is missing." or that all is as in the file.
std::string SummaryText(const LineComparison& comparison, const std::string& where = "in the file");

/// "1 module", "3 modules".
std::string Counted(std::size_t count, const std::string& what);

} // namespace kavro
