#include "project/cut_off_form.h"

#include "ui/center_form.h"
#include "ui/named.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int LineCharacters = 64;

struct Way {
    const char* Name;
    const char* Text;
    const char* Spoken;
    QDialogButtonBox::ButtonRole Role;
    CutOffForm::Answer Answer;
};
constexpr Way Ways[] = {
    {"GoOnBtn", "&Go on", "Go on with the restore", QDialogButtonBox::AcceptRole, CutOffForm::GoOn},
    {"ForgetBtn", "&Forget it", "Forget the restore", QDialogButtonBox::ActionRole, CutOffForm::Forget},
    {"CancelBtn", "Cancel", "Cancel", QDialogButtonBox::RejectRole, CutOffForm::Cancel}};

} // namespace

CutOffForm::CutOffForm(const std::string& text, bool canGoOn, QWidget* parent) : QDialog(parent) {
    setObjectName("CutOffForm");
    setWindowTitle("Restore");
    auto* told = Named(new QLabel(QString::fromStdString(text)), "CutOff", {});
    auto* question =
        new QLabel(canGoOn ? "Go on compares these modules with the line first, and writes what they lack. "
                             "Forget leaves them as they are now."
                           : "Forget it removes the file, and the restore begins anew.");
    auto* layout = new QVBoxLayout(this);
    for (QLabel* label : {told, question}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setMinimumWidth(fontMetrics().averageCharWidth() * LineCharacters);
        layout->addWidget(label);
    }
    auto* buttons = new QDialogButtonBox;
    for (const Way& way : Ways) {
        if (way.Answer == GoOn && !canGoOn)
            continue;
        auto* button = Named(buttons->addButton(way.Text, way.Role), way.Name, way.Spoken);
        connect(button, &QPushButton::clicked, this, [this, answer = way.Answer] { done(answer); });
    }
    layout->addWidget(buttons);
    CenterForm(*this);
}

} // namespace kavro
