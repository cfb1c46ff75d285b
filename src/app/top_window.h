#pragma once

class QWidget;

namespace kavro {

/// The window that is up over `window` and all its dialogs, or `window` itself.
QWidget* TopDialogOver(QWidget& window);

/// That of the main window, which what the program tells belongs to. Before it is shown, the dialog that is
/// up without it; null when there is none.
QWidget* TopWindow();

} // namespace kavro
