#pragma once

class QApplication;

namespace kavro {

/// Lets every dialog block the window that it belongs to, and those around it, but no other: the traffic
/// window can be used while any dialog is up. Dialogs without a parent block everything, as ever.
void BlockOwnWindowsOnly(QApplication& application);

} // namespace kavro
