#pragma once

#include <QFileDialog>

class QWidget;

namespace kavro {

/// Shows the terminal's file chooser `FileDialog` for any file. Empty when it is cancelled.
QString ChooseFile(QWidget* parent, const QString& title, QFileDialog::AcceptMode mode);

} // namespace kavro
