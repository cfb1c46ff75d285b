#pragma once

#include <QSerialPort>

#include <optional>
#include <string>

namespace kavro {

// What the operating system tells about a serial device before and beside opening it. Texts about a device do
// not name it: whoever reports them does.

/// Full path of a device: "/dev/" is put before a bare name such as "ttyUSB0", and links such as those under
/// /dev/serial/by-id are followed. A device that is not there, and any device on Windows, is left as it is.
std::string ResolveDevice(const std::string& device);

/// Throws `RuntimeFailure` when this user cannot open `path` as a serial device whatever other programs do:
/// nothing there, something that is no line (a folder, a file, /dev/ptmx), no permission.
void RequireUsableDevice(const std::string& path);

/// Whether the node of a device is still there. Always true on Windows, where only the driver can tell.
bool DevicePresent(const std::string& path);

/// Locks an open port against programs that honour no lock files. False when another one holds it. The lock
/// ends when the port is closed.
bool LockForThisProgram(const QSerialPort& port);

/// Whether the system holds characters of an open port that the port has not taken yet; nothing where it
/// cannot tell.
std::optional<bool> InputPending(const QSerialPort& port);

/// Why a device is busy: which process has it, or which lock file was left behind.
std::string BusyText(const std::string& path);

/// Access rights of a device node as far as advice on them goes.
struct DeviceRights {
    std::string Group;         ///< name of the group that owns the node
    bool GroupMayOpen = false; ///< the group, and not only root, may read and write
};

/// What is missing and what to do about it.
std::string NoPermissionText(const DeviceRights& rights);

} // namespace kavro
