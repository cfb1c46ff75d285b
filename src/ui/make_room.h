#pragma once

class QWidget;

namespace kavro {

/// Lets a window grow to the height that its content needs at its width: what wraps does not make it grow by
/// itself, and would squeeze the rest.
void MakeRoom(QWidget& form);

} // namespace kavro
