#pragma once

#include <QList>
#include <QStringList>

class QPrinter;

namespace kavro {

/// A list as it is printed.
struct Printout {
    QString Title;
    QString Details; ///< where and when it was
    QString Heading; ///< of the columns of the lines
    QStringList Lines{};
};

/// The rows of every page: title, details and heading, then the lines in order, a row each, and the page
/// number in the last of the `rows` rows.
QList<QStringList> PrintedPages(const Printout& printout, int rows);

/// Prints it in a fixed-pitch font on as many pages as it needs. Rows wider than the page make the font
/// smaller, never cut. False when the printer failed.
bool PrintLines(QPrinter& printer, const Printout& printout);

} // namespace kavro
