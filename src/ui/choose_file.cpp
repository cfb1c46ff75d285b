#include "ui/choose_file.h"

#include <QFileDialog>

namespace kavro {

namespace {

constexpr const char* AllFiles = "All Files (*.*) (*)";

QString Chosen(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

} // namespace

QString ChooseSaveFile(QWidget* parent, const SaveChoice& choice) {
    QFileDialog dialog(parent, choice.Title);
    dialog.setObjectName("SaveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // "*.*" would hide names without a point here; what matches is the last pair of brackets, unseen.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    const QString kind = QString("%1 (*.%2) (*.%2)").arg(choice.Kind, choice.Suffix);
    dialog.setNameFilters({kind, AllFiles});
    dialog.setDefaultSuffix(choice.Suffix);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString& filter) {
        dialog.setDefaultSuffix(filter.startsWith(choice.Kind) ? choice.Suffix : QString());
    });
    dialog.selectFile(choice.Name);
    return Chosen(dialog);
}

QString ChooseOpenFile(QWidget* parent, const OpenChoice& choice) {
    QFileDialog dialog(parent, choice.Title);
    dialog.setObjectName("OpenDialog");
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    const QString patterns = "*." + choice.Suffixes.join(" *.");
    dialog.setNameFilters({QString("%1 (%2) (%2)").arg(choice.Kind, patterns), AllFiles});
    return Chosen(dialog);
}

} // namespace kavro
