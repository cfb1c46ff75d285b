#include "ports/pty_server.h"

#include "link/runtime_failure.h"

#ifdef __linux__

#include "ports/descriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#endif

namespace kavro {

#ifdef __linux__

namespace {

struct TerminalSpeed {
    speed_t Speed;
    int Baud;
};

constexpr TerminalSpeed Speeds[] = {
    {B300, 300},       {B600, 600},       {B1200, 1200},     {B2400, 2400},   {B4800, 4800},
    {B9600, 9600},     {B19200, 19200},   {B38400, 38400},   {B57600, 57600}, {B115200, 115200},
    {B230400, 230400}, {B460800, 460800}, {B921600, 921600},
};

constexpr std::string_view PtyFolder = "/dev/pts/";

[[noreturn]] void Fail(const std::string& what) {
    throw RuntimeFailure(what + ": " + std::strerror(errno) + ".");
}

int Opened(int number, const char* what) {
    if (number < 0)
        Fail(what);
    return number;
}

int OpenMaster() {
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (master >= 0 && (grantpt(master) != 0 || unlockpt(master) != 0)) {
        close(master);
        return -1;
    }
    return master;
}

std::string SlavePath(int master) {
    std::array<char, 128> path{};
    if (ptsname_r(master, path.data(), path.size()) != 0)
        Fail("The pseudo-terminal has no device path");
    return path.data();
}

// Where a symbolic link leads; empty when there is none.
std::string LinkTarget(const std::string& path) {
    std::array<char, 4096> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    return {target.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

// A link left behind leads to a pseudo-terminal that is gone, or whose number has just been given to us.
bool IsLeftBehind(const std::string& linkPath, const std::string& devicePath) {
    const std::string target = LinkTarget(linkPath);
    return target.starts_with(PtyFolder) && (target == devicePath || access(target.c_str(), F_OK) != 0);
}

void MakeLink(const std::string& linkPath, const std::string& devicePath) {
    if (IsLeftBehind(linkPath, devicePath))
        unlink(linkPath.c_str());
    if (symlink(devicePath.c_str(), linkPath.c_str()) == 0)
        return;
    if (errno == EEXIST)
        throw RuntimeFailure(
            "The link \"" + linkPath +
            "\" cannot be made: something stands there already and may be in use. Remove it or "
            "choose another path.");
    Fail("The link \"" + linkPath + "\" cannot be made");
}

} // namespace

struct PtyServer::Device {
    explicit Device(const std::string& linkPath);
    ~Device();

    int Baud() const;
    std::string Read() const;
    void Write(char byte) const;
    void MakeRaw() const;
    bool OwnerChanged();

    Descriptor Master;
    std::string Path;
    Descriptor Slave; // kept open: without any, the other side's closing would make every read fail
    Descriptor Watch; // tells of the other side's opening and closing
    int OtherSides = 0;
    Descriptor StopEvent;
    std::string LinkPath;
};

PtyServer::Device::Device(const std::string& linkPath)
    : Master(Opened(OpenMaster(), "No pseudo-terminal can be opened")), Path(SlavePath(Master)),
      Slave(
          Opened(open(Path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), "The pseudo-terminal cannot be opened")),
      Watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      StopEvent(Opened(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC), "No event can be made")), LinkPath(linkPath) {
    // Systems run out of watches; without one only the tidying after a client that went is missing.
    inotify_add_watch(Watch, Path.c_str(), IN_OPEN | IN_CLOSE);
    MakeRaw();
    if (!LinkPath.empty())
        MakeLink(LinkPath, Path);
}

PtyServer::Device::~Device() {
    if (!LinkPath.empty() && LinkTarget(LinkPath) == Path)
        unlink(LinkPath.c_str());
}

// Rate that the other side has set; 0 for one that no module has.
int PtyServer::Device::Baud() const {
    termios settings{};
    if (tcgetattr(Slave, &settings) != 0)
        return 0;
    const speed_t speed = cfgetospeed(&settings);
    for (const TerminalSpeed& entry : Speeds)
        if (entry.Speed == speed)
            return entry.Baud;
    return 0;
}

std::string PtyServer::Device::Read() const {
    std::array<char, 512> text{};
    const ssize_t length = read(Master, text.data(), text.size());
    if (length < 0 && errno != EAGAIN && errno != EINTR)
        Fail("The pseudo-terminal cannot be read");
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

// A byte that nobody reads is lost, as on a line: the buffer being full is no failure.
void PtyServer::Device::Write(char byte) const {
    if (write(Master, &byte, 1) < 0 && errno != EAGAIN && errno != EINTR)
        Fail("The pseudo-terminal cannot be written");
}

// Whether the device was opened anew, or closed by the last program that had it, since the last call. Like a
// serial port it then holds nothing of before.
bool PtyServer::Device::OwnerChanged() {
    alignas(inotify_event) std::array<char, 4096> events{};
    bool changed = false;
    for (ssize_t length = 0; (length = read(Watch, events.data(), events.size())) > 0;)
        for (ssize_t at = 0; at < length;) {
            inotify_event event{};
            std::memcpy(&event, events.data() + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            const int before = OtherSides;
            OtherSides += (event.mask & IN_OPEN) != 0 ? 1 : -1;
            changed = changed || before == 0 || OtherSides == 0;
        }
    if (changed)
        tcflush(Slave, TCIFLUSH);
    if (changed && OtherSides == 0)
        ioctl(Slave, TIOCNXCL); // a program that was killed may have held it for itself alone
    return changed;
}

// Raw and at 9600 baud. Set once only: like a serial port, the device keeps what a program sets.
void PtyServer::Device::MakeRaw() const {
    termios settings{};
    if (tcgetattr(Slave, &settings) != 0)
        Fail("The pseudo-terminal's settings cannot be read");
    cfmakeraw(&settings);
    cfsetspeed(&settings, B9600);
    if (tcsetattr(Slave, TCSANOW, &settings) != 0)
        Fail("The pseudo-terminal cannot be set to raw");
}

PtyServer::PtyServer(SimulatedLine& line, Clock& clock, const std::string& linkPath)
    : device_(std::make_unique<Device>(linkPath)), transmission_(line), clock_(clock) {}

void PtyServer::Run(int stopDescriptor, SideInput input) {
    while (true) {
        std::array<pollfd, 5> waits = {{{device_->Master, POLLIN, 0},
                                        {device_->StopEvent, POLLIN, 0},
                                        {stopDescriptor, POLLIN, 0},
                                        {device_->Watch, POLLIN, 0},
                                        {input.Descriptor, POLLIN, 0}}};
        timespec pause{};
        const auto next = transmission_.NextMoment();
        if (next) {
            const std::int64_t left = std::max<std::int64_t>(*next - clock_.Microseconds(), 0);
            pause = {.tv_sec = left / 1'000'000, .tv_nsec = left % 1'000'000 * 1000};
        }
        if (ppoll(waits.data(), waits.size(), next ? &pause : nullptr, nullptr) < 0 && errno != EINTR)
            Fail("The pseudo-terminal cannot be waited for");
        if (waits[1].revents != 0 || waits[2].revents != 0)
            return;
        if (waits[4].revents != 0)
            TakeFrom(input);
        // Before reading and writing: what follows belongs to the program that has the device now.
        if (device_->OwnerChanged())
            transmission_.Clear();
        if (waits[0].revents != 0)
            transmission_.Send(device_->Read(), device_->Baud(), clock_.Microseconds());
        while (transmission_.Arrived(clock_.Microseconds()) > 0)
            device_->Write(transmission_.Take());
    }
}

void PtyServer::Stop() {
    eventfd_write(device_->StopEvent, 1);
}

const std::string& PtyServer::DevicePath() const {
    return device_->Path;
}

#else

struct PtyServer::Device {
    std::string Path;
};

PtyServer::PtyServer(SimulatedLine& line, Clock& clock, const std::string&)
    : transmission_(line), clock_(clock) {
    throw RuntimeFailure("This system has no pseudo-terminals. Use the simulated line inside the program.");
}

void PtyServer::Run(int, SideInput) {}

void PtyServer::Stop() {}

const std::string& PtyServer::DevicePath() const {
    return device_->Path;
}

#endif

PtyServer::~PtyServer() = default;

} // namespace kavro
