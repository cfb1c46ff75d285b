#include "ui/print_lines.h"

#include "ui/fixed_font.h"

#include <QBuffer>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QPrinter>

#include <algorithm>

namespace kavro {

bool PrintLines(QPagedPaintDevice& printer, const QStringList& lines) {
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const QRectF page = painter.viewport();
    QFont font = FixedFont();
    font.setPointSizeF(10);
    qreal widest = 0;
    for (const QString& line : lines)
        widest = std::max(widest, QFontMetricsF(font, &printer).horizontalAdvance(line));
    if (widest > page.width())
        font.setPointSizeF(font.pointSizeF() * page.width() / widest);
    painter.setFont(font);

    const QFontMetricsF metrics(font, &printer);
    qreal y = 0;
    for (const QString& line : lines) {
        if (y + metrics.height() > page.height()) {
            if (!printer.newPage())
                return false;
            y = 0;
        }
        painter.drawText(QPointF(0, y + metrics.ascent()), line);
        y += metrics.lineSpacing();
    }
    return painter.end();
}

// In memory, as a printer that writes a file itself does not tell when the disk is full.
std::string PdfOfLines(const QPrinter& printer, const QStringList& lines) {
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&file);
        writer.setResolution(printer.resolution());
        writer.setPageLayout(printer.pageLayout());
        PrintLines(writer, lines);
    }
    return file.data().toStdString();
}

} // namespace kavro
