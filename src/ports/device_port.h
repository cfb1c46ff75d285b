#pragma once

#include "link/serial_port.h"

#include <QSerialPort>
#include <QTimer>

#include <string>

namespace kavro {

/// A serial device of the operating system, or a pseudo-terminal: 8 data bits, no parity, 1 stop bit, no flow
/// control, DTR and RTS asserted. Needs a `QCoreApplication`, but no running event loop. Failures do not name
/// the device: the owner does.
///
/// A device that fails is closed at once, and the next operation says so.
class DevicePort : public SerialPort {
public:
    /// `device` is a path or a name below /dev ("COM3" on Windows). Opens nothing yet.
    explicit DevicePort(std::string device);

    void Settings(const std::string& text) override;
    void SetCommState(const std::string& text) override { Settings(text); }
    void PortOpen(bool open) override;
    bool PortOpen() const override { return port_.isOpen() && !lost_; }
    int InBufferCount() override;
    std::string EmptyInBuffer() override;
    char Input() override;
    void Output(const std::string& text) override;
    bool WaitForInput(int milliseconds) override;

private:
    void Open();
    void OnError(QSerialPort::SerialPortError error);
    void RequireOpen();
    void TakeReceived();
    void DropReceived();
    void ThrowIfLost();
    std::string OpenFailureText() const;

    std::string device_;
    std::string path_;     // what was opened, links followed
    std::string received_; // taken from the device in one piece, handed out by character
    std::size_t next_ = 0; // of `received_`
    bool lost_ = false;    // the device failed and nobody has been told yet
    QTimer closing_;       // closes a lost device outside its own signal
    QSerialPort port_;     // last, so that it is gone before what its signals touch
};

} // namespace kavro
