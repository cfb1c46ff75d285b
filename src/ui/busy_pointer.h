#pragma once

#include <QApplication>
#include <QCursor>

namespace kavro {

/// Shows that pointer over every window of the program while it lives.
template <Qt::CursorShape Shape>
class OverridePointer {
public:
    OverridePointer() { QApplication::setOverrideCursor(Shape); }
    ~OverridePointer() { QApplication::restoreOverrideCursor(); }
    OverridePointer(const OverridePointer&) = delete;
    OverridePointer& operator=(const OverridePointer&) = delete;
};

using BusyPointer = OverridePointer<Qt::WaitCursor>;
/// Where the user is asked while the pointer is busy.
using ArrowPointer = OverridePointer<Qt::ArrowCursor>;

} // namespace kavro
