#pragma once

#include "loop/loop_results.h"

#include <string>

namespace kavro {

/// What kind of file a report of a loop check is.
enum class LoopReportKind { Pdf, Csv };

/// The kind that the path's suffix names, in whatever case. Throws `RuntimeFailure` for another suffix.
LoopReportKind LoopReportKindOf(const std::string& path);

/// "12 of 40 done: 10 pass, 1 fail, 1 skip."
std::string LoopSummary(const LoopRecord& record);

/// A row a channel, as RFC 4180 has it; `docs/formats.md` describes it.
std::string LoopCsv(const LoopRecord& record);

/// The same for people, as an HTML document; `linePath` of the line file.
std::string LoopHtml(const LoopRecord& record, const std::string& linePath);

} // namespace kavro
