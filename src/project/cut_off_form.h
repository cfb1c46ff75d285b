#pragma once

#include "project/restore_journal.h"

#include <QDialog>

namespace kavro {

/// Tells that a restore was cut off and asks what to do: go on with it, forget it, or nothing now.
class CutOffForm : public QDialog {
public:
    enum Answer { Cancel = QDialog::Rejected, GoOn = QDialog::Accepted, Forget };

    CutOffForm(const CutOffRestore& cutOff, QWidget* parent);
};

} // namespace kavro
