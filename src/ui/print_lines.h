#pragma once

#include <QStringList>

#include <string>

class QPagedPaintDevice;
class QPrinter;

namespace kavro {

/// Prints the lines in a fixed-pitch font, one printed line each, on as many pages as they need. Lines wider
/// than the page make the font smaller, never cut. False when the printer failed.
bool PrintLines(QPagedPaintDevice& printer, const QStringList& lines);

/// The PDF file that printing these lines with the printer's page and resolution gives.
std::string PdfOfLines(const QPrinter& printer, const QStringList& lines);

} // namespace kavro
