#pragma once

#include "link/serial_port.h"
#include "ports/port_table.h"

#include <chrono>
#include <memory>
#include <string>

namespace kavro {

/// A COM port of the system, on whatever device the table names when it is opened. Every failure is told
/// with the device in front: "/dev/ttyS2: ...". What leaves the port closed is told with the table's advice.
class CommPort : public SerialPort {
public:
    /// COM port `number`, 1 to 8. Enters itself in the table and leaves it when it ends.
    CommPort(int number, std::shared_ptr<PortTable> table);
    ~CommPort() override;
    CommPort(const CommPort&) = delete;
    CommPort& operator=(const CommPort&) = delete;

    void Settings(const std::string& text) override;
    void SetCommState(const std::string& text) override;
    void PortOpen(bool open) override;
    bool PortOpen() const override;
    int InBufferCount() override;
    std::string EmptyInBuffer() override;
    char Input() override;
    void Output(const std::string& text) override;
    bool WaitForInput(int milliseconds) override;

    /// Moves the port to another device. When it is open, the new device is opened, with the settings last
    /// applied, before the old one is closed; a failure leaves all as it was. Many device servers take one
    /// client only, so what may be the same port of a server is closed first, and opened again on a failure.
    void Replace(const std::string& device);

private:
    std::string& Device() const;
    std::unique_ptr<SerialPort> Opened(const std::string& device);
    std::unique_ptr<SerialPort> Made(const std::string& device) const;
    void Swap(const std::string& device);
    SerialPort& Backend() const;
    template <class Operation>
    auto Run(Operation operation);
    std::string UntoldLoss();

    int number_;
    std::shared_ptr<PortTable> table_;
    std::unique_ptr<SerialPort> backend_;                   // null until first opened, and after closing
    std::string settings_;                                  // last applied, empty: never
    std::chrono::steady_clock::time_point failedOpening_{}; // when opening last failed; the epoch: it did not
    int failedRetries_ = 0;                                 // within the window behind it
};

} // namespace kavro
