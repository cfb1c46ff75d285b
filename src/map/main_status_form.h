#pragma once

#include "link/port_devices.h"
#include "map/session.h"

#include <QString>

class QLabel;
class QStatusBar;

namespace kavro {

/// What stands in the status bar of the main window: what goes on or was told last, the number of modules,
/// the line file, and the port.
class MainStatus {
public:
    /// Fills `bar`, which owns what is in it; looks at the port once a second from then on.
    MainStatus(QStatusBar& bar, Session& session, const PortDevices& devices);
    MainStatus(const MainStatus&) = delete;
    MainStatus& operator=(const MainStatus&) = delete;

    /// What goes on now, or what was told.
    void ShowActivity(const QString& text);
    QString Activity() const;

    void ShowCount(int modules);

    /// The line file that is open, when there is one.
    void ShowLineFile();

    /// The port in use: whether it is open, and whether its adapter echoes.
    void ShowPort();

    /// "COM1: /dev/ttyUSB0"
    QString PortText() const;

private:
    Session& session_;
    const PortDevices& devices_;
    QLabel* activity_ = nullptr;
    QLabel* count_ = nullptr;
    QLabel* lineFile_ = nullptr;
    QLabel* port_ = nullptr;
};

} // namespace kavro
