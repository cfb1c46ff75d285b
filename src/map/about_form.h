#pragma once

#include <QDialog>

namespace kavro {

/// Names the program and its version.
class AboutForm : public QDialog {
public:
    explicit AboutForm(QWidget* parent);
};

} // namespace kavro
