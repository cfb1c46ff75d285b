#pragma once

class QApplication;

namespace kavro {

/// Makes the controls of the Fusion style seen in dark colours too, and the program follow the desktop's dark
/// or light setting where Qt itself does not: asks the desktop's settings portal at start and whenever the
/// program becomes active. Does nothing where there is no portal, or where the desktop's own theme already
/// gives dark colours. Returns at once; the answer comes through the event loop.
void FollowColorScheme(QApplication& application);

} // namespace kavro
