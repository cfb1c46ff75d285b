#include "terminal/file_chooser_form.h"

namespace kavro {

QString ChooseFile(QWidget* parent, const QString& title, QFileDialog::AcceptMode mode) {
    QFileDialog dialog(parent, title);
    dialog.setObjectName("FileDialog");
    dialog.setAcceptMode(mode);
    dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    // "*.*" would hide names without a point here; what matches is the second pair of brackets, unseen.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setNameFilter("All Files (*.*) (*)");
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

} // namespace kavro
