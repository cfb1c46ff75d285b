#pragma once

#include <QDialog>

#include <string>

namespace kavro {

/// Tells that a restore was cut off and asks what to do: go on with it, forget it, or nothing now.
class CutOffForm : public QDialog {
public:
    enum Answer { Cancel = QDialog::Rejected, GoOn = QDialog::Accepted, Forget };

    /// `text`: what is known of it. One that nothing is known of cannot be gone on with.
    CutOffForm(const std::string& text, bool canGoOn, QWidget* parent);
};

} // namespace kavro
