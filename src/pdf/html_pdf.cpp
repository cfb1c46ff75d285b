#include "pdf/html_pdf.h"

#include "link/runtime_failure.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace kavro {

namespace {

constexpr int Resolution = 600; // dots per inch
constexpr double MarginMm = 20;
constexpr double TextPoints = 10, FootPoints = 8;
constexpr double FootRows = 2; // a blank one, and the foot

constexpr QLocale::Country LetterCountries[] = {
    QLocale::UnitedStates, QLocale::Canada,    QLocale::Mexico,     QLocale::PuertoRico, QLocale::Chile,
    QLocale::Colombia,     QLocale::CostaRica, QLocale::Guatemala,  QLocale::Nicaragua,  QLocale::Panama,
    QLocale::ElSalvador,   QLocale::Venezuela, QLocale::Philippines};

QPageLayout Paper() {
    const bool letter =
        std::ranges::find(LetterCountries, QLocale().territory()) != std::end(LetterCountries);
    return {QPageSize(letter ? QPageSize::Letter : QPageSize::A4), QPageLayout::Portrait,
            QMarginsF(MarginMm, MarginMm, MarginMm, MarginMm), QPageLayout::Millimeter};
}

QFont TextFont(double points) {
    QFont font("sans-serif");
    font.setPointSizeF(points);
    return font;
}

// Where something begins that is to stay on one page.
struct Part {
    QTextCursor Heading;
    qreal Top;
    bool Chapter; // begins a page by itself
};

// A part begins at each heading; one right behind another heading belongs to that one's part.
std::vector<Part> PartsOf(QTextDocument& document) {
    std::vector<Part> parts;
    bool behindHeading = false;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level > 0 && !behindHeading)
            parts.push_back(
                {QTextCursor(block), document.documentLayout()->blockBoundingRect(block).top(), level == 1});
        behindHeading = level > 0;
    }
    return parts;
}

// Lets each part begin a page that would not end on the page where it begins.
void KeepPartsTogether(QTextDocument& document, const QSizeF& page) {
    document.setPageSize({page.width(), -1}); // one endless page, to measure
    std::vector<Part> parts = PartsOf(document);
    const qreal end = document.size().height();
    QTextCursor edit(&document);
    edit.beginEditBlock();
    qreal used = 0; // of the page
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const qreal height = (i + 1 < parts.size() ? parts[i + 1].Top : end) - parts[i].Top;
        const bool breaks = parts[i].Chapter || used + height > page.height();
        if (breaks && !parts[i].Chapter) {
            QTextBlockFormat format = parts[i].Heading.blockFormat();
            format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
            parts[i].Heading.setBlockFormat(format);
        }
        used = (breaks ? 0 : used) + height;
    }
    edit.endEditBlock();
    document.setPageSize(page);
}

void DrawFoot(QPainter& painter, const QSizeF& paper, const QString& title, int page, int pages) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const QRectF foot(0, paper.height() - metrics.lineSpacing(), paper.width(), metrics.lineSpacing());
    const QString number = QString("Page %1 of %2").arg(page + 1).arg(pages);
    painter.drawText(foot, Qt::AlignRight | Qt::AlignBottom, number);
    const qreal room = paper.width() - metrics.horizontalAdvance(number + "    ");
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignBottom, metrics.elidedText(title, Qt::ElideRight, room));
}

// The number of pages.
int DrawPages(QPdfWriter& writer, QTextDocument& document) {
    QPainter painter(&writer);
    painter.setFont(TextFont(FootPoints));
    const QSizeF paper = painter.viewport().size();
    const QSizeF page(paper.width(),
                      paper.height() - FootRows * QFontMetricsF(painter.font(), &writer).lineSpacing());
    KeepPartsTogether(document, page);
    const int pages = document.pageCount();
    const QString title = document.metaInformation(QTextDocument::DocumentTitle);
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, Qt::black); // whatever the desktop's colours are
    for (int number = 0; number < pages; ++number) {
        if (number > 0)
            writer.newPage();
        painter.save();
        painter.translate(0, -number * page.height());
        context.clip = QRectF(0, number * page.height(), page.width(), page.height());
        painter.setClipRect(context.clip);
        document.documentLayout()->draw(&painter, context);
        painter.restore();
        DrawFoot(painter, paper, title, number, pages);
    }
    return pages;
}

struct Pdf {
    std::string Bytes;
    int Pages = 0;
};

// In memory, so that the file can be replaced whole.
Pdf Printed(const std::string& html) {
    if (QFontDatabase::families().isEmpty())
        throw RuntimeFailure("A PDF file needs a font, and the system has none. Install one, for example "
                             "fonts-dejavu-core, or save the report as HTML.");
    QBuffer file;
    int pages = 0;
    file.open(QIODevice::WriteOnly);
    {
        QPdfWriter writer(&file);
        writer.setResolution(Resolution);
        writer.setPageLayout(Paper());
        QTextDocument document;
        document.setDocumentMargin(0);
        document.documentLayout()->setPaintDevice(&writer);
        document.setDefaultFont(TextFont(TextPoints));
        document.setHtml(QString::fromStdString(html));
        writer.setTitle(document.metaInformation(QTextDocument::DocumentTitle));
        pages = DrawPages(writer, document);
    }
    return {file.data().toStdString(), pages};
}

} // namespace

std::string PdfOfHtml(const std::string& html) {
    return Printed(html).Bytes;
}

std::optional<std::string> PdfPageOfHtml(const std::string& html) {
    Pdf pdf = Printed(html);
    return pdf.Pages == 1 ? std::optional(std::move(pdf.Bytes)) : std::nullopt;
}

} // namespace kavro
