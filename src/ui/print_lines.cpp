#include "ui/print_lines.h"

#include "ui/fixed_font.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>

#include <algorithm>

namespace kavro {

namespace {

constexpr double PointSize = 10;
constexpr int FootRows = 2; // a blank one, and the page number

qsizetype LongestOf(const QStringList& rows) {
    qsizetype longest = 0;
    for (const QString& row : rows)
        longest = std::max(longest, row.size());
    return longest;
}

// Small enough for the widest row.
QFont PrintFont(QPagedPaintDevice& printer, const Printout& printout, qreal pageWidth) {
    QFont font = FixedFont();
    font.setPointSizeF(PointSize);
    const QFontMetricsF metrics(font, &printer);
    qreal widest = 0;
    for (const QString& row :
         printout.Lines + QStringList{printout.Title, printout.Details, printout.Heading})
        widest = std::max(widest, metrics.horizontalAdvance(row));
    if (widest > pageWidth)
        font.setPointSizeF(PointSize * pageWidth / widest);
    return font;
}

} // namespace

QList<QStringList> PrintedPages(const Printout& printout, int rows) {
    const QString rule(std::max(LongestOf(printout.Lines), printout.Heading.size()), '-');
    const QStringList head = {printout.Title, printout.Details, QString(), printout.Heading, rule};
    const qsizetype room = std::max<qsizetype>(rows - head.size() - FootRows, 1); // for lines
    const qsizetype count = std::max<qsizetype>((printout.Lines.size() + room - 1) / room, 1);
    QList<QStringList> pages;
    for (qsizetype page = 0; page < count; ++page) {
        QStringList text = head + printout.Lines.mid(page * room, room);
        text.resize(head.size() + room + FootRows - 1);
        pages << text + QStringList{QString("Page %1 of %2").arg(page + 1).arg(count)};
    }
    return pages;
}

bool PrintLines(QPagedPaintDevice& printer, const Printout& printout) {
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRectF paper = painter.viewport();
    painter.setFont(PrintFont(printer, printout, paper.width()));
    const QFontMetricsF metrics(painter.font(), &printer);
    const auto pages = PrintedPages(printout, static_cast<int>(paper.height() / metrics.lineSpacing()));
    for (const QStringList& page : pages) {
        if (&page != &pages.first() && !printer.newPage())
            return false;
        qreal y = metrics.ascent();
        for (const QString& row : page) {
            painter.drawText(QPointF(0, y), row);
            y += metrics.lineSpacing();
        }
    }
    return painter.end();
}

// In memory, as a printer that writes a file itself does not tell when the disk is full.
std::string PdfOf(const QPrinter& printer, const Printout& printout) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&file);
        writer.setResolution(printer.resolution());
        writer.setPageLayout(printer.pageLayout());
        PrintLines(writer, printout);
    }
    return file.data().toStdString();
}

} // namespace kavro
