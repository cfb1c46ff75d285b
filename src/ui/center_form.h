#pragma once

class QSize;
class QWidget;

namespace kavro {

/// Places a window in the middle of the screen it belongs to, at the size its content asks for. A window
/// whose content needs more than the screen has, when it is shown or later, gets scroll bars.
void CenterForm(QWidget& form);

/// Places a window in the middle of the screen it belongs to, at that size or as much of it as the screen
/// has.
void PlaceForm(QWidget& form, QSize size);

} // namespace kavro
