#pragma once

#include "project/check_file.h"
#include "project/line_file.h"

#include <optional>
#include <string>

namespace kavro {

/// What a report says of itself; texts are UTF-8, what is empty is left out.
struct ReportFacts {
    std::string Path{};   ///< of the line file
    std::string Port{};   ///< "COM1: /dev/ttyUSB0"
    std::string Date{};   ///< of the report, in local time
    std::string Person{}; ///< who made it
};

/// What a report is made of.
struct ReportSource {
    ReportFacts Facts{};
    std::string CheckPath{}; ///< of a line check as JSON; empty: none
};

/// What kind of file a report is.
enum class ReportKind { Pdf, Html };

/// The kind that the path's suffix names, in whatever case; nothing for another suffix.
std::optional<ReportKind> ReportKindOf(const std::string& path);

/// The commissioning report of a line as an HTML document: in black and white, of what both browsers and Qt's
/// rich text understand. Chapters have headings of level 1 and begin a page, modules have headings of
/// level 2.
std::string ReportHtml(const LineFile& file, const std::optional<SavedCheck>& check,
                       const ReportFacts& facts);

/// The same from the files. Throws `RuntimeFailure` that names the file when one cannot be used.
std::string LoadReport(const ReportSource& source);

/// Throws `RuntimeFailure` when a report at that path would replace one of the files that it is made of.
void RefuseOwnSource(const ReportSource& source, const std::string& path);

} // namespace kavro
