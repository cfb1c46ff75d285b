#pragma once

#include <cstdint>

class QFormLayout;
class QLineEdit;

namespace kavro {

/// Adds the row "Repeat times:" with the box `RepeatTimes` and its buttons `TimesSpin`.
QLineEdit* AddRepeatTimes(QFormLayout& layout, std::int16_t times);

/// The number in `RepeatTimes`. Throws `RuntimeFailure` when it is empty or not between 0 and 32767.
std::int16_t RepeatTimesIn(const QLineEdit& box);

} // namespace kavro
