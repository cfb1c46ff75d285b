#include <QtGlobal>

#ifdef Q_OS_UNIX

#include "ports/socket_options.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace kavro {

namespace {

struct SocketOption {
    int Level, Name, Value;
};
constexpr SocketOption Options[] = {
    {IPPROTO_TCP, TCP_NODELAY, 1}, // a command is short and must leave at once
    {SOL_SOCKET, SO_KEEPALIVE, 1},
#ifdef __linux__
    {IPPROTO_TCP, TCP_KEEPIDLE, 10}, // seconds
    {IPPROTO_TCP, TCP_KEEPINTVL, 5},       {IPPROTO_TCP, TCP_KEEPCNT, 3},
    {IPPROTO_TCP, TCP_USER_TIMEOUT, 5000}, // milliseconds, of what was written and is not acknowledged
#endif
#ifdef SO_NOSIGPIPE
    {SOL_SOCKET, SO_NOSIGPIPE, 1},
#endif
};

} // namespace

void SetSocketOptions(int socket) {
    // One that a system refuses makes the connection no worse than without it.
    for (const SocketOption& option : Options)
        setsockopt(socket, option.Level, option.Name, &option.Value, sizeof option.Value);
}

} // namespace kavro

#endif
