#include "ports/tcp_server.h"

#include "link/runtime_failure.h"

#ifdef __linux__

#include "ports/com_port_server.h"
#include "ports/descriptor.h"
#include "ports/host_lookup.h"
#include "ports/socket_options.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#endif

namespace kavro {

#ifdef __linux__

namespace {

constexpr int LookUpMs = 5000;
constexpr const char* InUse = "Port already in use\r\n";

[[noreturn]] void Fail(const NetworkAddress& address, int error) {
    throw RuntimeFailure("Nothing can be listened for at " + NetworkDevice(address) + ": " +
                         std::strerror(error) + ". Choose another port, or an address of this computer.");
}

int Listen(const NetworkAddress& address) {
    const HostAddresses found = LookUpHost(address, Deadline(LookUpMs));
    const int number = socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (number < 0)
        Fail(address, errno);
    const int on = 1;
    setsockopt(number, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on); // also just after an earlier server
    if (bind(number, found->ai_addr, found->ai_addrlen) == 0 && listen(number, 4) == 0)
        return number;
    const int error = errno;
    close(number);
    Fail(address, error);
}

std::uint16_t PortOf(int listener) {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
    return ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6&>(address).sin6_port
                                               : reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

} // namespace

struct TcpServer::Listener {
    Listener(const NetworkAddress& address, int baud)
        : Socket(Listen(address)), StopEvent(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)), ComPort(baud) {}

    Descriptor Socket;
    Descriptor StopEvent;
    std::optional<Descriptor> Client;
    ComPortServer ComPort; // unused by a raw client
};

TcpServer::TcpServer(SimulatedLine& line, Clock& clock, const NetworkAddress& address, int baud)
    : address_(address), listener_(std::make_unique<Listener>(address, baud)), transmission_(line),
      clock_(clock), baud_(baud) {
    address_.Port = PortOf(listener_->Socket);
}

void TcpServer::Accept() {
    const int number = accept4(listener_->Socket, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (number < 0)
        return;
    if (listener_->Client) {
        const Descriptor refused(number);
        send(refused, InUse, std::strlen(InUse), MSG_NOSIGNAL);
        return;
    }
    SetSocketOptions(number);
    listener_->Client.emplace(number);
    transmission_.Clear(); // like a serial port, it then holds nothing of before
    if (address_.Kind == NetworkKind::Raw)
        return;
    listener_->ComPort = ComPortServer(listener_->ComPort.Baud());
    Send(listener_->ComPort.Begin());
}

void TcpServer::Leave() {
    listener_->Client.reset();
    transmission_.Clear();
}

// A client that takes nothing more, or is gone, is left.
void TcpServer::Send(const std::string& bytes) {
    if (listener_->Client && !bytes.empty() &&
        send(*listener_->Client, bytes.data(), bytes.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(bytes.size()))
        Leave();
}

void TcpServer::Hear() {
    std::array<char, 512> bytes{};
    const ssize_t size = recv(*listener_->Client, bytes.data(), bytes.size(), 0);
    if (size <= 0) {
        if (size == 0 || (errno != EAGAIN && errno != EINTR))
            Leave();
        return;
    }
    std::string text(bytes.data(), static_cast<std::size_t>(size));
    int baud = baud_;
    if (address_.Kind == NetworkKind::Rfc2217) {
        std::string data;
        listener_->ComPort.Receive(text, data);
        text = data;
        baud = listener_->ComPort.Baud();
        Send(listener_->ComPort.TakeAnswers());
    }
    transmission_.Send(text, baud, clock_.Microseconds());
}

void TcpServer::Speak() {
    std::string text;
    while (transmission_.Arrived(clock_.Microseconds()) > 0)
        text += transmission_.Take();
    Send(address_.Kind == NetworkKind::Raw ? text : TelnetEscaped(text));
}

void TcpServer::Run(int stopDescriptor, SideInput input) {
    while (true) {
        std::array<pollfd, 5> waits = {{{listener_->Socket, POLLIN, 0},
                                        {listener_->StopEvent, POLLIN, 0},
                                        {stopDescriptor, POLLIN, 0},
                                        {listener_->Client ? int(*listener_->Client) : -1, POLLIN, 0},
                                        {input.Descriptor, POLLIN, 0}}};
        timespec pause{};
        const auto next = transmission_.NextMoment();
        if (next) {
            const std::int64_t left = std::max<std::int64_t>(*next - clock_.Microseconds(), 0);
            pause = {.tv_sec = left / 1'000'000, .tv_nsec = left % 1'000'000 * 1000};
        }
        if (ppoll(waits.data(), waits.size(), next ? &pause : nullptr, nullptr) < 0)
            continue; // a signal
        if (waits[1].revents != 0 || waits[2].revents != 0)
            return;
        if (waits[4].revents != 0)
            TakeFrom(input);
        if (waits[3].revents != 0)
            Hear();
        if (waits[0].revents != 0)
            Accept(); // behind the old client's leaving
        Speak();
    }
}

void TcpServer::Stop() {
    eventfd_write(listener_->StopEvent, 1);
}

#else

struct TcpServer::Listener {};

TcpServer::TcpServer(SimulatedLine& line, Clock& clock, const NetworkAddress& address, int baud)
    : address_(address), transmission_(line), clock_(clock), baud_(baud) {
    throw RuntimeFailure("This program serves no network on this system. Use the simulated line inside the "
                         "program.");
}

void TcpServer::Run(int, SideInput) {}

void TcpServer::Stop() {}

#endif

std::string TcpServer::Device() const {
    return NetworkDevice(address_);
}

TcpServer::~TcpServer() = default;

} // namespace kavro
