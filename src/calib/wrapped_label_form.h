#pragma once

class QLabel;
class QWidget;

namespace kavro {

/// A plain text that wraps, with room for that many lines of that many average characters.
QLabel* WrappedLabel(const char* name, int columns, int lines, QWidget& form);

} // namespace kavro
