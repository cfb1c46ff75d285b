#include "project/backup_form.h"

#include "project/backup.h"
#include "project/comparison_text.h"
#include "project/open_line_file.h"
#include "ui/center_form.h"
#include "ui/make_room.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QApplication>
#include <QClipboard>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <optional>

namespace kavro {

namespace {

constexpr int ToldRows = 6;

// Keeps what is told until the work has ended.
class ToldMessages : public Messages {
public:
    void Show(const std::string& text, const std::string& /*title*/) override { Texts.push_back(text); }

    std::vector<std::string> Texts;
};

std::string FileName(const std::string& path) {
    return path.substr(path.find_last_of('/') + 1);
}

} // namespace

BackupForm::BackupForm(kavro::Session& session, kavro::Messages& messages, const std::string& path,
                       QWidget* parent)
    : LineWorkForm(session, messages, parent, "BackupForm", "Back Up Line"), path_(path) {
    const std::optional<LineFile> before = FileBefore(path);
    isNew_ = !before;
    auto* file = Named(new QLabel(QString::fromStdString(path)), "File", {});
    file->setTextFormat(Qt::PlainText);
    file->setWordWrap(true);
    name_ = Named(new QLineEdit, "Name", "Name of the line");
    name_->setText(
        QString::fromStdString(before && !before->Name.empty() ? before->Name : NameFromPath(path)));
    told_ = Named(new QPlainTextEdit, "Told", "What was told of the backup");
    told_->setReadOnly(true);
    told_->setTabChangesFocus(true);
    told_->setMinimumHeight(fontMetrics().lineSpacing() * ToldRows);
    told_->hide();
    start_ = Button("StartBtn", "&Back up", [this] { Operate([this] { Save(); }); });
    copy_ = Button("CopyBtn", "&Copy",
                   [this] { QApplication::clipboard()->setText(told_->toPlainText() + '\n'); });
    copy_->hide();
    auto* entries = new QFormLayout;
    entries->addRow("File:", file);
    entries->addRow("&Name of the line:", name_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(entries);
    layout->addLayout(BuildProgress());
    layout->addWidget(told_, 1);
    layout->addLayout(BuildButtons({start_, copy_}));
    ShowRunning(false);
    start_->setDefault(true);
    name_->setFocus();
    name_->selectAll();
    CenterForm(*this);
}

void BackupForm::Begun() {
    if (!isNew_)
        start_->click();
}

void BackupForm::Save() {
    told_->clear();
    ToldMessages told;
    const std::optional<LineFile> before = FileBefore(path_); // as it is on the disk now
    const WorkEnd end = Work([&](const LineWork& work) {
        BackUpLine({work.Session, {told, work.Tell.Words}, work.Progress}, path_, before,
                   name_->text().trimmed().toStdString());
    });
    if (end == WorkEnd::Done)
        return Saved(told.Texts);
    session_.Note = "The backup " + std::string(end == WorkEnd::Stopped ? "was stopped" : "failed") + "; " +
                    FileName(path_) + (isNew_ ? " was not written." : " is as it was.");
    if (end == WorkEnd::Stopped)
        QDialog::reject();
}

void BackupForm::Saved(const std::vector<std::string>& told) {
    isNew_ = false;
    const LineFile file = LoadLineFile(path_);
    session_.Note = Counted(file.Modules.size(), "module") + " saved to " + FileName(path_) + ".";
    OpenLineFile(session_, path_, file);
    if (told.empty())
        return accept();
    QStringList texts = {QString::fromStdString(session_.Note)};
    for (const std::string& text : told)
        texts << QString::fromStdString(text);
    told_->setPlainText(texts.join('\n'));
    told_->show();
    copy_->show();
    MakeRoom(*this);
}

void BackupForm::ShowRunning(bool running) {
    name_->setEnabled(!running && isNew_);
    SetUsable(*start_, !running, "The line is being read.");
}

} // namespace kavro
