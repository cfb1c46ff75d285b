#pragma once

class QWidget;

namespace kavro {

/// Places a window in the middle of the screen it belongs to, at the size its content asks for.
void CenterForm(QWidget& form);

} // namespace kavro
