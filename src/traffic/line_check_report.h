#pragma once

#include "traffic/line_findings.h"

#include <string>
#include <vector>

namespace kavro {

/// A line check as lines of text, 100 characters wide at most: a table of the modules, the line, and the
/// findings.
std::vector<std::string> ReportLines(const LineCheckResult& result, const std::vector<LineFinding>& findings);

/// "address 5" or "line".
std::string WhoseText(const LineFinding& finding);

/// A finding as a sentence: "damaged, address 5: ...".
std::string FindingText(const LineFinding& finding);

/// The line in a sentence: its echo, the characters that came unasked, the load.
std::string LineText(const LineCheckResult& result);

/// How far it came, when it did not come to its end; else empty.
std::string UnfinishedText(const LineCheckResult& result);

/// What is said when there are no findings.
const char* NoFindingsText(const LineCheckResult& result);

/// Milliseconds as they are shown: "16.2".
std::string MsText(double milliseconds);

} // namespace kavro
