#pragma once

class QApplication;

namespace kavro {

/// Gives the keyboard focus back to the window below when a window that had it closes. Most desktops do this
/// themselves; without a window manager, and after windows without a parent, nobody does.
void KeepWindowFocus(QApplication& application);

} // namespace kavro
