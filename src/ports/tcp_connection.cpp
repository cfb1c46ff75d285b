#include "ports/tcp_connection.h"

#include "link/runtime_failure.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX

#include "ports/descriptor.h"
#include "ports/host_lookup.h"
#include "ports/socket_options.h"

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

#endif

namespace kavro {

#ifdef Q_OS_UNIX

namespace {

#ifdef __linux__
constexpr int WriteFlags = MSG_NOSIGNAL;
constexpr short HangUp = POLLRDHUP | POLLHUP | POLLERR;
#else
constexpr int WriteFlags = 0;
constexpr short HangUp = POLLHUP | POLLERR;
#endif

struct ConnectFailure {
    int Error;
    const char* Text;
};
constexpr ConnectFailure ConnectFailures[] = {
    {ECONNREFUSED, "The server refused the connection. Check the port number, and that the server runs."},
    {ECONNRESET, "The server refused the connection. Check the port number, and that the server runs."},
    {ENETUNREACH, "There is no way to this host. Check the network, and the address of the host."},
    {EHOSTUNREACH, "There is no way to this host. Check the network, and the address of the host."},
    {ENETDOWN, "There is no way to this host. Check the network, and the address of the host."},
};

std::string ConnectFailureText(int error, int limitMs) {
    for (const ConnectFailure& failure : ConnectFailures)
        if (failure.Error == error)
            return failure.Text;
    if (error == ETIMEDOUT)
        return "The host did not answer within " + std::to_string((limitMs + 999) / 1000) +
               " s. Check that it is switched on, its address, and the network.";
    return std::string("The connection cannot be made (") + std::strerror(error) + "). Check the network.";
}

bool Wait(int descriptor, short events, int milliseconds) {
    pollfd wait = {descriptor, events, 0};
    return poll(&wait, 1, milliseconds) > 0;
}

int MakeSocket(const addrinfo& address) {
    const int number = socket(address.ai_family, SOCK_STREAM, 0);
    if (number < 0)
        return number;
    fcntl(number, F_SETFD, FD_CLOEXEC);
    fcntl(number, F_SETFL, O_NONBLOCK);
    SetSocketOptions(number);
    return number;
}

// 0, or why there is no connection.
int Connect(int number, const addrinfo& address, const Deadline& deadline) {
    if (connect(number, address.ai_addr, address.ai_addrlen) == 0)
        return 0;
    if (errno != EINPROGRESS)
        return errno;
    while (!Wait(number, POLLOUT, deadline.LeftMs()))
        if (deadline.Over())
            return ETIMEDOUT;
    int error = 0;
    socklen_t size = sizeof error;
    return getsockopt(number, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

// Tries one address after the other; each gets its share of the time that is left.
int ConnectToAny(const NetworkAddress& address, int limitMs) {
    const Deadline deadline(limitMs);
    const HostAddresses addresses = LookUpHost(address, deadline);
    int total = 0;
    for (const addrinfo* each = addresses.get(); each != nullptr; each = each->ai_next)
        ++total;
    int error = ENETUNREACH;
    for (const addrinfo* each = addresses.get(); each != nullptr; each = each->ai_next, --total) {
        const int number = MakeSocket(*each);
        error = number < 0 ? errno : Connect(number, *each, Deadline(deadline.LeftMs() / total));
        if (error == 0)
            return number;
        if (number >= 0)
            close(number);
    }
    throw RuntimeFailure(ConnectFailureText(error, limitMs));
}

bool MayGoOn(int error) {
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

} // namespace

struct TcpConnection::Socket {
    Descriptor Number;
};

TcpConnection::TcpConnection(const NetworkAddress& address, int limitMs)
    : socket_(new Socket{Descriptor(ConnectToAny(address, limitMs))}) {}

bool TcpConnection::Read(std::string& to) {
    std::array<char, 4096> bytes; // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the system
    const ssize_t size = recv(socket_->Number, bytes.data(), bytes.size(), 0);
    if (size > 0)
        to.append(bytes.data(), static_cast<std::size_t>(size));
    return size > 0 || (size < 0 && MayGoOn(errno));
}

std::optional<std::size_t> TcpConnection::Write(std::string_view bytes) {
    const ssize_t size = send(socket_->Number, bytes.data(), bytes.size(), WriteFlags);
    if (size < 0 && !MayGoOn(errno))
        return std::nullopt;
    return size < 0 ? 0 : static_cast<std::size_t>(size);
}

bool TcpConnection::WaitForInput(int milliseconds) {
    return Wait(socket_->Number, POLLIN, milliseconds);
}

bool TcpConnection::WaitForRoom(int milliseconds) {
    return Wait(socket_->Number, POLLOUT, milliseconds);
}

bool TcpConnection::Ended() const {
    return Wait(socket_->Number, HangUp, 0);
}

#else

struct TcpConnection::Socket {};

TcpConnection::TcpConnection(const NetworkAddress&, int) {
    throw RuntimeFailure("This program has no network ports on this system. Let a driver of the device "
                         "server make a COM port of it, and choose that.");
}

bool TcpConnection::Read(std::string&) {
    return false;
}

std::optional<std::size_t> TcpConnection::Write(std::string_view) {
    return std::nullopt;
}

bool TcpConnection::WaitForInput(int) {
    return false;
}

bool TcpConnection::WaitForRoom(int) {
    return false;
}

bool TcpConnection::Ended() const {
    return true;
}

#endif

TcpConnection::~TcpConnection() = default;

} // namespace kavro
