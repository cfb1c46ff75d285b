#pragma once

#include "diag/drive_question.h"

#include <QDialog>

class QLayout;

namespace kavro {

/// Asks whether outputs may be driven: what, from which value, to which. Accepted when they may; Cancel is
/// the default.
class DriveQuestionForm : public QDialog {
public:
    explicit DriveQuestionForm(const DriveQuestion& question, QWidget* parent = nullptr);
};

/// Whether the window may be opened for the selected module, where the user wants to be asked; asks for that
/// over `parent`. Nothing is sent but what reads the outputs. Throws `RuntimeFailure` when the port fails
/// meanwhile; nothing has been driven then.
bool MayDrive(Session& session, DrivingWindow window, QWidget* parent);

} // namespace kavro
