#include "ui/choose_file.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

#include <utility>

namespace kavro {

namespace {

constexpr const char* AllFiles = "All Files (*.*) (*)";

QString Chosen(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

void OfferSaving(QFileDialog& dialog, const SaveChoice& choice) {
    dialog.setObjectName("SaveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    // "*.*" would hide names without a point here; what matches is the last pair of brackets, unseen.
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    if (!choice.AsksToReplace)
        dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QString kind = QString("%1 (*.%2) (*.%2)").arg(choice.Kind, choice.Suffix);
    dialog.setNameFilters({kind, AllFiles});
    dialog.setDefaultSuffix(choice.Suffix);
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog,
                     [&dialog, choice](const QString& filter) {
                         dialog.setDefaultSuffix(filter.startsWith(choice.Kind) ? choice.Suffix : QString());
                     });
    dialog.selectFile(choice.Name);
}

void AskToReplace(QWidget& parent, const QString& path,
                  const std::function<void(const QString& path)>& chosen) {
    auto* box = new QMessageBox(QMessageBox::Question, "Replace File",
                                path + " already exists. Do you want to replace it?",
                                QMessageBox::Yes | QMessageBox::No, &parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setObjectName("ReplaceBox");
    box->setTextFormat(Qt::PlainText);
    box->setDefaultButton(QMessageBox::No);
    QObject::connect(box, &QMessageBox::accepted, &parent, [path, chosen] { chosen(path); });
    box->open();
}

} // namespace

QString ChooseSaveFile(QWidget* parent, const SaveChoice& choice) {
    QFileDialog dialog(parent, choice.Title);
    OfferSaving(dialog, choice);
    return Chosen(dialog);
}

void AskSaveFile(QWidget& parent, const SaveChoice& choice, std::function<void(const QString& path)> chosen) {
    auto* dialog = new QFileDialog(&parent, choice.Title);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    OfferSaving(*dialog, choice);
    dialog->setOption(QFileDialog::DontConfirmOverwrite); // its question would be waited for
    QObject::connect(dialog, &QFileDialog::fileSelected, &parent,
                     [&parent, chosen = std::move(chosen)](const QString& path) {
                         if (QFileInfo::exists(path))
                             AskToReplace(parent, path, chosen);
                         else
                             chosen(path);
                     });
    dialog->open();
}

QString ChooseOpenFile(QWidget* parent, const OpenChoice& choice) {
    QFileDialog dialog(parent, choice.Title);
    dialog.setObjectName("OpenDialog");
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    const QString patterns = "*." + choice.Suffixes.join(" *.");
    dialog.setNameFilters({QString("%1 (%2) (%2)").arg(choice.Kind, patterns), AllFiles});
    if (!choice.Path.isEmpty())
        dialog.selectFile(choice.Path);
    return Chosen(dialog);
}

QString ChooseFolder(QWidget* parent, const QString& title, const QString& folder) {
    QFileDialog dialog(parent, title, folder);
    dialog.setObjectName("FolderDialog");
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return Chosen(dialog);
}

} // namespace kavro
