#pragma once

#include <QStringList>

class QPrinter;

namespace kavro {

/// Prints the lines in a fixed-pitch font, one printed line each, on as many pages as they need. Lines wider
/// than the page make the font smaller, never cut. False when the printer failed.
bool PrintLines(QPrinter& printer, const QStringList& lines);

} // namespace kavro
