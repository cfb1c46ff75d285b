#pragma once

#include <QSize>

class QWidget;

namespace kavro {

/// The least size in which a window shows all its content, when it is at most `width` wide.
QSize NeededSize(const QWidget& form, int width);

/// Puts the content of a window into a scroll area, which follows the keyboard focus; the last row, which
/// holds the buttons, stays in sight below where `room` allows. Returns what the scroll bars take.
QSize ScrollContent(QWidget& form, QSize room);

} // namespace kavro
