#include "ports/device_port.h"

#include "link/runtime_failure.h"
#include "ports/device_node.h"
#include "ports/port_settings.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr int WriteLimitMs = 5000;         // far more than the longest command takes at 150 baud
constexpr qint64 LargestBacklog = 1 << 16; // unread characters that no transaction will ever ask for
constexpr int MostReads = 16;              // in one go, of a device that babbles

} // namespace

DevicePort::DevicePort(std::string device) : device_(std::move(device)) {
    QObject::connect(&port_, &QSerialPort::errorOccurred, &port_,
                     [this](QSerialPort::SerialPortError error) { OnError(error); });
    closing_.setSingleShot(true);
    QObject::connect(&closing_, &QTimer::timeout, &closing_, [this] {
        if (lost_)
            port_.close();
    });
    // A device that babbles while nobody reads must not fill the memory.
    QObject::connect(&port_, &QSerialPort::readyRead, &port_, [this] {
        if (port_.bytesAvailable() > LargestBacklog)
            port_.readAll();
    });
}

// A vanished device reports its error again in every turn of an event loop until it is closed, and it cannot
// be closed inside its own signal. Operations close it themselves; an idle port is closed by the timer.
void DevicePort::OnError(QSerialPort::SerialPortError error) {
    const bool harmless = error == QSerialPort::NoError || error == QSerialPort::TimeoutError ||
                          error == QSerialPort::UnsupportedOperationError;
    if (harmless || lost_)
        return;
    lost_ = true;
    closing_.start(0);
}

void DevicePort::ThrowIfLost() {
    if (!lost_)
        return;
    port_.close();
    lost_ = false; // told once: from now on the port is simply not open
    throw RuntimeFailure("The device has been disconnected. Plug it in again.");
}

void DevicePort::RequireOpen() {
    ThrowIfLost();
    if (!port_.isOpen())
        throw RuntimeFailure("The port is not open.");
}

void DevicePort::PortOpen(bool open) {
    if (open && PortOpen())
        return;
    if (port_.isOpen())
        port_.close();
    DropReceived();
    lost_ = false;
    if (open)
        Open();
}

void DevicePort::Open() {
    path_ = ResolveDevice(device_);
    RequireUsableDevice(path_);
    port_.setPortName(QString::fromStdString(path_));
    const bool opened = port_.open(QIODevice::ReadWrite);
    lost_ = false; // failing to open is not losing
    if (!opened)
        throw RuntimeFailure(OpenFailureText());
    if (!LockForThisProgram(port_)) {
        port_.close(); // first, so that our own lock file is not taken for the other program's
        throw RuntimeFailure(BusyText(path_));
    }
    // Some adapters take their power from these lines; a pseudo-terminal has none, so failing is no matter.
    port_.setDataTerminalReady(true);
    port_.setRequestToSend(true);
}

std::string DevicePort::OpenFailureText() const {
    switch (port_.error()) {
    case QSerialPort::PermissionError:
        return BusyText(path_);
    case QSerialPort::DeviceNotFoundError:
        return "There is no such device. Plug the adapter in, or choose another device.";
    case QSerialPort::UnsupportedOperationError:
        return "This is not a serial device: choose another device.";
    default:
        return "The device cannot be opened (" + port_.errorString().toStdString() +
               "). Check the adapter, or choose another device.";
    }
}

void DevicePort::Settings(const std::string& text) {
    RequireOpen();
    const bool applied = port_.setBaudRate(BaudOfSettings(text)); // it is kept across closing, as is "n,8,1"
    ThrowIfLost();
    if (!applied)
        throw RateRefused("The device does not take the settings \"" + text +
                          "\". Choose a baud rate that it supports.");
}

int DevicePort::InBufferCount() {
    RequireOpen();
    return static_cast<int>(received_.size() - next_) + static_cast<int>(port_.bytesAvailable());
}

std::string DevicePort::EmptyInBuffer() {
    RequireOpen();
    std::string discarded = received_.substr(next_);
    DropReceived();
    for (int reads = 0; reads < MostReads && InputPending(port_).value_or(true); ++reads)
        if (!port_.waitForReadyRead(0))
            break;
    discarded += port_.readAll().toStdString();
    ThrowIfLost();
    return discarded;
}

void DevicePort::DropReceived() {
    received_.clear();
    next_ = 0;
}

char DevicePort::Input() {
    if (next_ == received_.size())
        TakeReceived();
    return received_[next_++];
}

void DevicePort::TakeReceived() {
    if (InBufferCount() == 0)
        throw RuntimeFailure("No character is waiting at the device. Wait for one before reading.");
    received_.resize(static_cast<std::size_t>(port_.bytesAvailable()));
    port_.read(received_.data(), static_cast<qint64>(received_.size()));
    next_ = 0;
}

void DevicePort::Output(const std::string& text) {
    RequireOpen();
    port_.write(text.data(), static_cast<qint64>(text.size()));
    port_.flush(); // at once, not at the next turn of an event loop
    while (!lost_ && port_.bytesToWrite() > 0) {
        if (port_.waitForBytesWritten(WriteLimitMs) || lost_)
            continue;
        port_.clear(QSerialPort::Output);
        throw RuntimeFailure("The device takes no more characters. Check the adapter and its cable.");
    }
    ThrowIfLost();
}

bool DevicePort::WaitForInput(int milliseconds) {
    if (InBufferCount() > 0)
        return true;
    const bool arrived = port_.waitForReadyRead(std::max(milliseconds, 0));
    // Not every driver reports an unplugged adapter, but the node goes with it.
    if (!arrived && !DevicePresent(path_))
        lost_ = true;
    ThrowIfLost();
    return arrived;
}

} // namespace kavro
