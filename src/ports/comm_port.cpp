#include "ports/comm_port.h"

#include "link/network_address.h"
#include "link/port_devices.h"
#include "link/runtime_failure.h"
#include "ports/device_node.h"
#include "ports/device_port.h"
#include "ports/network_port.h"
#include "ports/replay_port.h"

namespace kavro {

namespace {

constexpr std::chrono::seconds RetryWindow(10);
constexpr int RetryConnectLimitMs = 1000;

// Runs an operation on a device and puts the device's name in front of what it throws.
template <class Operation>
auto Named(const std::string& device, Operation operation) {
    try {
        return operation();
    } catch (const RateRefused& failure) {
        throw RateRefused(ShownDevice(device) + ": " + failure.what());
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(ShownDevice(device) + ": " + failure.what());
    }
}

} // namespace

CommPort::CommPort(int number, std::shared_ptr<PortTable> table) : number_(number), table_(std::move(table)) {
    table_->Port.at(static_cast<std::size_t>(number - 1)) = this;
}

CommPort::~CommPort() {
    CommPort*& entry = table_->Port[static_cast<std::size_t>(number_ - 1)];
    if (entry == this)
        entry = nullptr;
}

std::string& CommPort::Device() const {
    return table_->Device[static_cast<std::size_t>(number_ - 1)];
}

SerialPort& CommPort::Backend() const {
    if (!backend_)
        throw RuntimeFailure("The port is not open.");
    return *backend_;
}

// Runs an operation on the port in use.
template <class Operation>
auto CommPort::Run(Operation operation) {
    try {
        return Named(Device(), [&] { return operation(Backend()); });
    } catch (const RuntimeFailure& failure) {
        if (PortOpen())
            throw;
        backend_.reset(); // told now
        if (table_->ClosedAdvice.empty())
            throw;
        throw RuntimeFailure(failure.what() + (" " + table_->ClosedAdvice));
    }
}

std::unique_ptr<SerialPort> CommPort::Made(const std::string& device) const {
    if (device == SimulatedLineDevice)
        return table_->MakeSimulatedPort();
    if (IsReplay(device))
        return std::make_unique<ReplayPort>(device, [table = table_] { ++table->NotRecorded; });
    if (!IsNetworkDevice(device))
        return std::make_unique<DevicePort>(device);
    // Whoever tries again and again is not held up for long each time by a host that is away; the limit grows
    // back, as there are hosts that take longer.
    const bool again = std::chrono::steady_clock::now() - failedOpening_ < RetryWindow;
    NetworkLimits limits;
    if (again)
        limits.ConnectMs = std::min(limits.ConnectMs, RetryConnectLimitMs << std::min(failedRetries_, 8));
    return std::make_unique<NetworkPort>(ParseNetworkAddress(device), limits);
}

std::unique_ptr<SerialPort> CommPort::Opened(const std::string& device) {
    return Named(device, [&] {
        try {
            auto backend = Made(device);
            backend->PortOpen(true);
            if (!settings_.empty())
                backend->Settings(settings_);
            failedOpening_ = {};
            failedRetries_ = 0;
            return backend;
        } catch (const RuntimeFailure&) {
            const auto now = std::chrono::steady_clock::now();
            failedRetries_ = now - failedOpening_ < RetryWindow ? failedRetries_ + 1 : 0;
            failedOpening_ = now;
            throw;
        }
    });
}

void CommPort::Settings(const std::string& text) {
    Run([&](SerialPort& port) { port.Settings(text); });
    settings_ = text;
}

void CommPort::SetCommState(const std::string& text) {
    Run([&](SerialPort& port) { port.SetCommState(text); });
    settings_ = text;
}

void CommPort::PortOpen(bool open) {
    if (open && PortOpen())
        return;
    const std::string loss = open ? UntoldLoss() : "";
    backend_.reset(); // a lost one too
    if (!open)
        return;
    try {
        backend_ = Opened(Device());
    } catch (const RuntimeFailure&) {
        if (loss.empty())
            throw;
        throw RuntimeFailure(loss);
    }
}

// What a connection that has ended since the last operation has to tell: nothing comes of it when the port
// can be opened again, and it says more than why it cannot be.
std::string CommPort::UntoldLoss() {
    if (!backend_ || !IsNetworkDevice(Device()))
        return {};
    try {
        Named(Device(), [this] { backend_->EmptyInBuffer(); });
        return {};
    } catch (const RuntimeFailure& failure) {
        return failure.what();
    }
}

bool CommPort::PortOpen() const {
    return backend_ && backend_->PortOpen();
}

int CommPort::InBufferCount() {
    return Run([](SerialPort& port) { return port.InBufferCount(); });
}

std::string CommPort::EmptyInBuffer() {
    return Run([](SerialPort& port) { return port.EmptyInBuffer(); });
}

char CommPort::Input() {
    return Run([](SerialPort& port) { return port.Input(); });
}

void CommPort::Output(const std::string& text) {
    Run([&](SerialPort& port) { port.Output(text); });
}

bool CommPort::WaitForInput(int milliseconds) {
    return Run([&](SerialPort& port) { return port.WaitForInput(milliseconds); });
}

void CommPort::Replace(const std::string& device) {
    // Another name of the same device needs no opening, which would find the device busy.
    const bool same =
        IsNetworkDevice(device) ? device == Device() : ResolveDevice(device) == ResolveDevice(Device());
    failedOpening_ = {}; // of the device before
    if (!PortOpen())
        backend_.reset();
    else if (!same && MayBeSameServerPort(device, Device()))
        Swap(device);
    else if (!same)
        backend_ = Opened(device);
    Device() = device;
}

// Closes the device in use before it opens the other one, and takes it back when that fails.
void CommPort::Swap(const std::string& device) {
    backend_.reset();
    try {
        backend_ = Opened(device);
    } catch (const RuntimeFailure&) {
        try {
            backend_ = Opened(Device());
        } catch (const RuntimeFailure&) {
            // The failure that led here is the one to tell; the port stays closed.
        }
        throw;
    }
}

} // namespace kavro
