#include "terminal/disp_batch_form.h"

#include "link/text.h"
#include "ui/center_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QElapsedTimer>
#include <QFontMetrics>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextCursor>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int Columns = 72;
constexpr int Rows = 24;
constexpr int LinesAtOnce = 500;
constexpr int PieceMs = 30; // of work between two turns of the event loop

// Codes in place of characters that cannot be shown: these bytes are what would be sent.
QString NextLines(BatchFile& file) {
    std::string text;
    for (int count = 0; count < LinesAtOnce && !file.AtEnd(); ++count)
        text += VisibleText(file.ReadLine()) + "\r\n";
    return QString::fromStdString(text);
}

} // namespace

DispBatchForm::DispBatchForm(BatchFile& file, Messages& messages, QWidget* parent)
    : QDialog(parent), file_(file), messages_(messages) {
    setObjectName("DispBatchForm");
    setWindowTitle("Batch File Content");

    batchContent_ = Named(new QPlainTextEdit, "BatchContent", "Batch file content");
    batchContent_->setFont(FixedFont());
    batchContent_->setReadOnly(true);
    batchContent_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    batchContent_->setUndoRedoEnabled(false); // a large file would be kept twice
    batchContent_->setLineWrapMode(QPlainTextEdit::NoWrap);
    const QFontMetrics metrics(batchContent_->font());
    batchContent_->setMinimumSize(metrics.horizontalAdvance('0') * Columns, metrics.lineSpacing() * Rows);
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    connect(exit, &QPushButton::clicked, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(batchContent_, 1);
    layout->addWidget(exit, 0, Qt::AlignRight);
    connect(&loading_, &QTimer::timeout, this, [this] { LoadPiece(); });
    loading_.start(
        0); // from the dialog's own event loop, so that closing it during a message really closes it
    exit->setFocus();
    CenterForm(*this);
}

void DispBatchForm::LoadPiece() {
    loading_.stop(); // a failure is told once
    Guard(messages_, [this] {
        QElapsedTimer piece;
        piece.start();
        QTextCursor end(batchContent_->document());
        end.movePosition(QTextCursor::End);
        while (!file_.AtEnd() && piece.elapsed() < PieceMs)
            end.insertText(NextLines(file_));
        if (!file_.AtEnd())
            loading_.start(0);
    });
}

} // namespace kavro
