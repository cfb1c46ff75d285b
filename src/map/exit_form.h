#pragma once

#include <QDialog>

namespace kavro {

/// The exit question; accepted by its yes button only.
class ExitForm : public QDialog {
public:
    explicit ExitForm(QWidget* parent);
};

} // namespace kavro
