#pragma once

#include <cstdint>
#include <functional>

class QDialog;
class QFormLayout;
class QLineEdit;

namespace kavro {

/// Adds the row "Repeat times:" with the box `RepeatTimes` and its buttons `TimesSpin`.
QLineEdit* AddRepeatTimes(QFormLayout& layout, std::int16_t times);

/// The number in `RepeatTimes`. Throws `RuntimeFailure` when it is empty or not between 0 and 32767.
std::int16_t RepeatTimesIn(const QLineEdit& box);

/// Adds `OKBtn`, which calls `ok`, and `CancelBtn`, which rejects the dialog.
void AddOkAndCancel(QFormLayout& layout, QDialog& dialog, std::function<void()> ok);

} // namespace kavro
