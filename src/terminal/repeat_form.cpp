#include "terminal/repeat_form.h"

#include "terminal/repeat_times_form.h"
#include "ui/center_form.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>

namespace kavro {

RepeatForm::RepeatForm(Session& session, Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session) {
    setObjectName("RepeatForm");
    setWindowTitle("Repeat");

    auto* layout = new QFormLayout(this);
    repeatTimes_ = AddRepeatTimes(*layout, session.BatchRepeatCount);
    repeatTimes_->selectAll();
    layout->addRow(OkAndCancel(*this, [this, &messages] { Guard(messages, [this] { OKBtn_Click(); }); }));
    repeatTimes_->setFocus();
    CenterForm(*this);
}

// Clears the count of Repeat Command, not that of the batch; meant so.
void RepeatForm::reject() {
    session_.RepeatCommandCount = 0;
    QDialog::reject();
}

void RepeatForm::OKBtn_Click() {
    session_.BatchRepeatCount = RepeatTimesIn(*repeatTimes_);
    accept();
}

} // namespace kavro
