#include "ports/port_registry.h"

#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "ports/comm_port.h"
#include "ports/ini_text.h"
#include "ports/replace_file.h"

#include <QSerialPortInfo>
#include <QSettings>

#include <algorithm>
#include <tuple>

namespace kavro {

namespace {

constexpr const char* RecentKey = "RecentNetworkPorts"; // separated by blanks, the last one first
constexpr std::size_t MostRecent = 8;

std::size_t PortIndex(int port) {
    if (port < 1 || port > PortTotal)
        throw RuntimeFailure("There is no COM port " + std::to_string(port) + ", only COM1 to COM8.");
    return static_cast<std::size_t>(port - 1);
}

std::string DefaultDevice(int port) {
#ifdef Q_OS_WIN
    return "COM" + std::to_string(port);
#else
    return "/dev/ttyS" + std::to_string(port - 1);
#endif
}

QString KeyOf(int port) {
    return QStringLiteral("COM%1").arg(port);
}

// What the file says of a port, empty for nothing. A comma written by hand splits a value into a list.
std::string KeptDevice(const QSettings& settings, int port) {
    return settings.value(KeyOf(port)).toStringList().join(',').trimmed().toStdString();
}

DetectedDevice Detected(const QSerialPortInfo& info) {
    DetectedDevice device;
#ifdef Q_OS_WIN
    device.Path = info.portName().toStdString(); // "COM3", as the ports are called by default
#else
    device.Path = info.systemLocation().toStdString();
#endif
    device.Description = info.description().toStdString();
    device.Manufacturer = info.manufacturer().toStdString();
    device.SerialNumber = info.serialNumber().toStdString();
    device.Usb = info.hasVendorIdentifier();
    return device;
}

} // namespace

std::pair<int, std::string> ParsePortOption(const std::string& text) {
    const std::string given = "The port \"" + text + "\" ";
    const auto equals = text.find('=');
    if (equals == std::string::npos)
        throw RuntimeFailure(given + "names no device: write N=DEVICE, for example 1=/dev/ttyUSB0.");
    const bool oneDigit = equals == 1 && text[0] >= '1' && text[0] < '1' + PortTotal;
    if (!oneDigit)
        throw RuntimeFailure(given + "does not begin with a COM port from 1 to 8, as in 1=/dev/ttyUSB0.");
    if (equals + 1 == text.size())
        throw RuntimeFailure(given +
                             "names no device after \"=\": write N=DEVICE, for example 1=/dev/ttyUSB0.");
    RequireDeviceName(text.substr(equals + 1));
    return {text[0] - '0', text.substr(equals + 1)};
}

PortRegistry::PortRegistry(std::string iniPath, const std::map<int, std::string>& commandLine,
                           std::function<std::unique_ptr<SerialPort>()> makeSimulatedPort,
                           std::string closedAdvice)
    : iniPath_(std::move(iniPath)), commandLine_(commandLine), table_(std::make_shared<PortTable>()) {
    table_->MakeSimulatedPort = std::move(makeSimulatedPort);
    table_->ClosedAdvice = std::move(closedAdvice);
    const QSettings settings(QString::fromStdString(iniPath_), QSettings::IniFormat);
    for (int port = 1; port <= PortTotal; ++port) {
        const std::string kept = KeptDevice(settings, port);
        table_->Device[PortIndex(port)] = kept.empty() ? DefaultDevice(port) : kept;
    }
    for (const auto& [port, device] : commandLine_)
        table_->Device[PortIndex(port)] = device;
    for (const QString& device : settings.value(RecentKey).toString().split(' ', Qt::SkipEmptyParts))
        recent_.push_back(device.toStdString());
    recent_.resize(std::min(recent_.size(), MostRecent));
}

std::string PortRegistry::Device(int port) const {
    return table_->Device[PortIndex(port)];
}

std::vector<DetectedDevice> PortRegistry::Detect() const {
    std::vector<DetectedDevice> devices;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
        devices.push_back(Detected(info));
    const auto order = [](const DetectedDevice& device) { return std::tuple(!device.Usb, device.Path); };
    std::sort(devices.begin(), devices.end(),
              [&](const DetectedDevice& a, const DetectedDevice& b) { return order(a) < order(b); });
    return devices;
}

void PortRegistry::Assign(int port, const std::string& device) {
    const std::size_t index = PortIndex(port);
    if (device.empty())
        throw RuntimeFailure("No device is given for COM" + std::to_string(port) +
                             ". Choose one, or type its path.");
    if (table_->Port[index] != nullptr)
        table_->Port[index]->Replace(device);
    else
        table_->Device[index] = device;
    if (IsNetworkDevice(device))
        NoteRecent(device);
}

void PortRegistry::NoteRecent(const std::string& device) {
    std::erase(recent_, device);
    recent_.insert(recent_.begin(), device);
    recent_.resize(std::min(recent_.size(), MostRecent));
}

void PortRegistry::Save() {
    std::map<std::string, std::string> kept;
    for (int port = 1; port <= PortTotal; ++port) {
        const std::string device = Device(port);
        const auto given = commandLine_.find(port);
        if (given != commandLine_.end() && given->second == device)
            continue; // what was kept before stays
        kept[KeyOf(port).toStdString()] = device == DefaultDevice(port) ? "" : device;
    }
    std::string& recent = kept[RecentKey];
    for (const std::string& device : recent_)
        recent += (recent.empty() ? "" : " ") + device;
    ReplaceFile(iniPath_, WithIniValues(IniText(iniPath_, "The devices of the ports"), kept));
    // Saved once, the user's choice counts, even when it returns to the command line's device later.
    std::erase_if(commandLine_, [this](const auto& given) { return Device(given.first) != given.second; });
}

SerialPorts PortRegistry::Ports() const {
    SerialPorts ports;
    for (int port = 1; port <= PortTotal; ++port)
        ports[PortIndex(port)] = std::make_unique<CommPort>(port, table_);
    return ports;
}

} // namespace kavro
