#include "ui/choose_save_file.h"

#include <QFileDialog>

namespace kavro {

QString ChooseSaveFile(QWidget* parent, const SaveChoice& choice) {
    QFileDialog dialog(parent, choice.Title);
    dialog.setObjectName("SaveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // "*.*" would hide names without a point here; what matches is the last pair of brackets, unseen.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    const QString kind = QString("%1 (*.%2) (*.%2)").arg(choice.Kind, choice.Suffix);
    dialog.setNameFilters({kind, "All Files (*.*) (*)"});
    dialog.setDefaultSuffix(choice.Suffix);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
        dialog.setDefaultSuffix(filter.startsWith(choice.Kind) ? choice.Suffix : QString());
    });
    dialog.selectFile(choice.Name);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

} // namespace kavro
