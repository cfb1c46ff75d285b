#pragma once

#include <QApplication>
#include <QCursor>

namespace kavro {

/// Shows the busy pointer over every window of the program while it lives.
class BusyPointer {
public:
    BusyPointer() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QApplication::restoreOverrideCursor(); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};

} // namespace kavro
