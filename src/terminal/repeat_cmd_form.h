#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

class QLineEdit;

namespace kavro {

/// Asks which command to repeat and how often. Leaves `RepeatCommandText` and `RepeatCommandCount` in the
/// session; the count is 0 when it is cancelled.
class RepeatCmdForm : public QDialog {
public:
    RepeatCmdForm(Session& session, Messages& messages, QWidget* parent);

    void reject() override; // Cancel, Escape and the close button

private:
    void OKBtn_Click();

    Session& session_;
    QLineEdit* repeatCmd_ = nullptr;
    QLineEdit* repeatTimes_ = nullptr;
};

} // namespace kavro
