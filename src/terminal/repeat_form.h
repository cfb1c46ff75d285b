#pragma once

#include "link/messages.h"
#include "map/session.h"

#include <QDialog>

class QLineEdit;

namespace kavro {

/// Asks for the number of passes of a batch run. Leaves `BatchRepeatCount` in the session.
class RepeatForm : public QDialog {
public:
    RepeatForm(Session& session, Messages& messages, QWidget* parent);

    void reject() override; // Cancel, Escape and the close button

private:
    void OKBtn_Click();

    Session& session_;
    QLineEdit* repeatTimes_ = nullptr;
};

} // namespace kavro
