#include "map/print_list_form.h"

#include "link/runtime_failure.h"
#include "map/list_line.h"
#include "map/product.h"
#include "ui/print_lines.h"

#include <QDateTime>
#include <QLocale>
#include <QPrintDialog>
#include <QPrinter>

namespace kavro {

void PrintList(QWidget* window, const Session& session, const QString& port) {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, window);
    dialog.setWindowTitle("Print");
    if (dialog.exec() != QDialog::Accepted)
        return;
    Printout printout{.Title = QString(ApplicationTitle) + ": modules",
                      .Details = port + ", " +
                                 QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat),
                      .Heading = ListHeading};
    for (const std::string& line : session.Device)
        printout.Lines << QString::fromStdString(line);
    if (!printer.outputFileName().isEmpty())
        session.ReplaceFile(printer.outputFileName().toStdString(), PdfOf(printer, printout));
    else if (!PrintLines(printer, printout))
        throw RuntimeFailure("The list could not be printed. Check the printer.");
}

} // namespace kavro
