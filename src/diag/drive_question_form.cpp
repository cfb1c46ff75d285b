#include "diag/drive_question_form.h"

#include "link/runtime_failure.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int TextWidth = 420;
constexpr int ColumnGap = 24;
constexpr const char* NotOpened = " Nothing has been driven. Try again when the port works.";

QLabel* Text(const QString& name, const std::string& text) {
    auto* label = Named(new QLabel(QString::fromStdString(text)), name, {});
    label->setTextFormat(Qt::PlainText); // nothing that a tag contains is markup
    return label;
}

QLayout* Table(const std::vector<DriveQuestion::Change>& changes) {
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(ColumnGap);
    const auto addRow = [grid](int row, const QString& nameEnd, const DriveQuestion::Change& change) {
        grid->addWidget(Text("What" + nameEnd, change.What), row, 0);
        grid->addWidget(Text("Now" + nameEnd, change.Now), row, 1);
        grid->addWidget(Text("Becomes" + nameEnd, change.Becomes), row, 2);
    };
    addRow(0, "Heading", {"", "Now", "Will become"});
    for (int row = 0; row < static_cast<int>(changes.size()); ++row)
        addRow(row + 1, "_" + QString::number(row), changes[static_cast<std::size_t>(row)]);
    grid->setColumnStretch(2, 1);
    return grid;
}

DriveQuestion AskModuleFirst(Session& session, DrivingWindow window) {
    const BusyPointer busy;
    try {
        return QuestionBefore(session, window);
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(std::string(failure.what()) + NotOpened);
    }
}

} // namespace

DriveQuestionForm::DriveQuestionForm(const DriveQuestion& question, QWidget* parent) : QDialog(parent) {
    setObjectName("DriveQuestionForm");
    setWindowTitle("Drive Outputs?");
    QLabel* text = Text("Question", question.Text);
    text->setWordWrap(true);
    text->setMinimumWidth(TextWidth);
    auto* buttons = new QDialogButtonBox;
    auto* drive = buttons->addButton("&Drive", QDialogButtonBox::AcceptRole);
    auto* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    Named(drive, "DriveBtn", "Drive")->setAutoDefault(false);
    Named(cancel, "CancelBtn", "Cancel")->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addLayout(Table(question.Changes));
    layout->addWidget(buttons);
    cancel->setFocus();
    CenterForm(*this);
}

bool MayDrive(Session& session, DrivingWindow window, QWidget* parent) {
    if (!session.Preferences.AskBeforeDriving)
        return true;
    const DriveQuestion question = AskModuleFirst(session, window);
    return DriveQuestionForm(question, parent).exec() == QDialog::Accepted;
}

} // namespace kavro
