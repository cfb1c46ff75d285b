#pragma once

#include <array>
#include <memory>
#include <string>

namespace kavro {

/// What a serial port must do. Every operation throws `RuntimeFailure` with a plain description when the
/// device fails; a device that vanished is closed and tells so once, at the next operation.
class SerialPort {
public:
    virtual ~SerialPort() = default;

    /// Applies a settings text such as "9600,n,8,1". The port must be open.
    virtual void Settings(const std::string& text) = 0;

    /// Applies the same kind of text through a device-control block (the rates from 38400 baud up).
    virtual void SetCommState(const std::string& text) = 0;

    /// Opens the port for this program alone, or closes it. Settings applied last are applied again on
    /// opening. Opening an open port and closing a closed one do nothing.
    virtual void PortOpen(bool open) = 0;

    /// Whether the port is open.
    virtual bool PortOpen() const = 0;

    /// Characters received and not yet read.
    virtual int InBufferCount() = 0;

    /// Takes everything received so far at once, to be discarded; empty when there was nothing. Of a line
    /// that babbles the end may be missing.
    virtual std::string EmptyInBuffer() = 0;

    /// Takes one received character; at least one must be waiting.
    virtual char Input() = 0;

    /// Writes the whole text; returns without waiting for a reply.
    virtual void Output(const std::string& text) = 0;

    /// Waits until a character is waiting, at most `milliseconds`, at next to no processor time.
    /// True when one is waiting.
    virtual bool WaitForInput(int milliseconds) = 0;
};

/// Number of COM ports of the system; they are numbered from 1.
inline constexpr int PortTotal = 8;

/// COM1 to COM8 at index 0 to 7.
using SerialPorts = std::array<std::unique_ptr<SerialPort>, PortTotal>;

} // namespace kavro
