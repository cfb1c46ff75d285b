#pragma once

#include "traffic/line_findings.h"

#include <string>
#include <vector>

namespace kavro {

/// A line check as a JSON object.
std::string CheckJson(const LineCheckResult& result, const std::vector<LineFinding>& findings);

} // namespace kavro
