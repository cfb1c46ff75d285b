#pragma once

#include <functional>

class QWidget;

namespace kavro {

/// Hands every character typed into `box` to `filter` as its code. The filter keeps it or sets it to 0, which
/// drops the key with a beep. Keys without a character (arrows, Tab, Delete, Escape) and shortcuts always
/// pass.
void FilterKeys(QWidget& box, std::function<void(int& keyCode)> filter);

} // namespace kavro
