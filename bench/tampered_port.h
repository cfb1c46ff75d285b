#pragma once

#include "link/runtime_failure.h"
#include "link/serial_port.h"
#include "sim/simulated_module.h"
#include "sim/virtual_clock.h"

#include <functional>
#include <string>
#include <utility>

namespace kavro {

/// A port to one simulated module that answers at once, and always as at the same moment: what it says
/// depends on nothing but what it was told. Waiting costs virtual time only.
class TamperedPort : public SerialPort {
public:
    TamperedPort(SimulatedModule& module, VirtualClock& clock) : module_(module), clock_(clock) {}

    /// Gets every command (without its carriage return) and the reply (with it, empty: silence), and may
    /// change the reply.
    std::function<void(const std::string& command, std::string& reply)> Tamper;

    void Settings(const std::string& text) override { baud_ = std::stoi(text); }
    void SetCommState(const std::string& text) override { Settings(text); }
    void PortOpen(bool /*open*/) override {}
    bool PortOpen() const override { return true; }
    int InBufferCount() override { return static_cast<int>(arrived_.size() - taken_); }
    std::string EmptyInBuffer() override { return arrived_.substr(std::exchange(taken_, arrived_.size())); }
    char Input() override {
        if (InBufferCount() == 0)
            throw RuntimeFailure("No character is waiting.");
        return arrived_[taken_++];
    }
    void Output(const std::string& text) override {
        const std::string command = text.substr(0, text.find('\r'));
        std::string reply = module_.Hear(command, baud_, 0).value_or("");
        if (!reply.empty())
            reply += '\r';
        if (Tamper)
            Tamper(command, reply);
        arrived_.erase(0, std::exchange(taken_, 0));
        arrived_ += reply;
    }
    bool WaitForInput(int milliseconds) override {
        if (InBufferCount() == 0)
            clock_.Sleep(milliseconds);
        return InBufferCount() > 0;
    }

private:
    SimulatedModule& module_;
    VirtualClock& clock_;
    int baud_ = 9600;
    std::string arrived_;
    std::size_t taken_ = 0;
};

} // namespace kavro
