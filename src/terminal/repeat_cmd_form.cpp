#include "terminal/repeat_cmd_form.h"

#include "link/text.h"
#include "terminal/console_form.h"
#include "terminal/repeat_times_form.h"
#include "ui/center_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"
#include "ui/ok_cancel.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>

namespace kavro {

namespace {

// Without the blanks that it was padded with: what is typed behind them would be cut off.
QString WithoutPadding(const std::string& command) {
    return QString::fromLatin1(command.substr(0, command.find_last_not_of(' ') + 1).c_str());
}

} // namespace

RepeatCmdForm::RepeatCmdForm(Session& session, Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session) {
    setObjectName("RepeatCmdForm");
    setWindowTitle("Repeat");

    repeatCmd_ = Named(new QLineEdit(WithoutPadding(session.RepeatCommandText)), "RepeatCmd", "Command");
    repeatCmd_->setFont(FixedFont());
    repeatCmd_->setMaxLength(static_cast<int>(RepeatCommandWidth)); // what lies beyond is seen to be cut
    repeatCmd_->setMinimumWidth(fontMetrics().averageCharWidth() * 30);
    repeatCmd_->selectAll();

    auto* layout = new QFormLayout(this);
    layout->addRow("&Command:", repeatCmd_);
    repeatTimes_ = AddRepeatTimes(*layout, session.RepeatCommandCount);
    layout->addRow(OkAndCancel(*this, [this, &messages] { Guard(messages, [this] { OKBtn_Click(); }); }));
    repeatCmd_->setFocus();
    CenterForm(*this);
}

void RepeatCmdForm::reject() {
    session_.RepeatCommandCount = 0;
    QDialog::reject();
}

void RepeatCmdForm::OKBtn_Click() {
    const std::string command = WireText(repeatCmd_->text());
    session_.RepeatCommandCount = RepeatTimesIn(*repeatTimes_);
    session_.RepeatCommandText = FixedText(command, RepeatCommandWidth);
    accept();
}

} // namespace kavro
