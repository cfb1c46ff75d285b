#pragma once

class QBoxLayout;
class QLineEdit;

namespace kavro {

/// Bounds of an up and down pair: down acts above `Low`, up below `High`.
struct SpinRange {
    int Low = 0;
    int High = 0;
};

/// Adds an up and a down button for the whole number in `box` to `layout`, named `name` + "_Up" and "_Down".
/// The arrow keys do the same in the box. A text that is no number is left alone.
void AddSpinButtons(QBoxLayout& layout, QLineEdit& box, const char* name, SpinRange range);

} // namespace kavro
