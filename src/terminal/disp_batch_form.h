#pragma once

#include "link/messages.h"
#include "terminal/batch_file.h"

#include <QDialog>
#include <QTimer>

class QPlainTextEdit;

namespace kavro {

/// Shows every line of a batch file. A small file is there at once; a large one comes piece by piece, while
/// the form can be used and closed.
class DispBatchForm : public QDialog {
public:
    /// Reads `file` from its first line, where it must stand, until it is shown or the form is destroyed.
    DispBatchForm(BatchFile& file, Messages& messages, QWidget* parent);

private:
    void LoadPiece();

    BatchFile& file_;
    Messages& messages_;
    QTimer loading_;
    QPlainTextEdit* batchContent_ = nullptr;
};

} // namespace kavro
