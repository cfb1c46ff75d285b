#include "monitor/history_choice_form.h"

#include "monitor/line_name.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"
#include "ui/usable.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QSpinBox>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int LongestKeepDays = 36'500;
constexpr int NameColumns = 24;
constexpr const char* NameLetters = "[A-Za-z0-9._-]*";
constexpr const char* NoName = "The line needs a name: letters, digits, \"-\", \"_\" and \".\".";

} // namespace

HistoryChoiceForm::HistoryChoiceForm(const std::string& path, const std::string& line, QWidget* parent)
    : QDialog(parent), path_(path) {
    setObjectName("HistoryChoiceForm");
    setWindowTitle("Store");
    const QFileInfo file(QString::fromStdString(path));
    auto* name = Named(new QLabel(file.fileName()), "FileName", {});
    name->setTextFormat(Qt::PlainText);
    name->setToolTip(file.filePath());
    line_ = Named(new QLineEdit(QString::fromStdString(line)), "Line", "Name of the line in the history");
    line_->setValidator(new QRegularExpressionValidator(QRegularExpression(NameLetters), line_));
    line_->setMinimumWidth(fontMetrics().averageCharWidth() * NameColumns);
    days_ = Named(new QSpinBox, "KeepDays", "Days that readings are kept");
    days_->setRange(0, LongestKeepDays);
    days_->setSpecialValueText("all of them");
    days_->setSuffix(" days");
    days_->setToolTip("Older readings of this line are deleted; 0 keeps all of them");
    auto* rows = new QFormLayout;
    rows->addRow("File:", name);
    rows->addRow("&Line:", line_);
    rows->addRow("&Keep readings:", days_);
    auto* buttons = OkAndCancel(*this, [this] { accept(); });
    const auto look = [this, buttons] {
        SetUsable(*buttons->button(QDialogButtonBox::Ok), !line_->text().isEmpty(), NoName);
    };
    connect(line_, &QLineEdit::textChanged, this, look);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addWidget(buttons);
    look();
    line_->setFocus();
    CenterForm(*this);
}

HistoryChoice HistoryChoiceForm::Choice() const {
    HistoryChoice choice = {path_, line_->text().toStdString(), std::nullopt};
    if (days_->value() > 0)
        choice.KeepDays = days_->value();
    return choice;
}

std::optional<HistoryChoice> ChooseHistory(const Session& session, QWidget* parent) {
    const QString path = ChooseSaveFile(parent, {.Title = "Store",
                                                 .Kind = "Histories",
                                                 .Suffix = "sqlite",
                                                 .Name = "monitor.sqlite",
                                                 .AsksToReplace = false}); // what it has stays
    if (path.isEmpty())
        return std::nullopt;
    HistoryChoiceForm form(path.toStdString(), LineNameOf(session), parent);
    if (auto* below = qobject_cast<QDialog*>(parent)) // which may be closed first
        QObject::connect(below, &QDialog::finished, &form, &QDialog::reject);
    return form.exec() == QDialog::Accepted ? std::optional(form.Choice()) : std::nullopt;
}

} // namespace kavro
