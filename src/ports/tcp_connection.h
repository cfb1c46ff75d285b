#pragma once

#include "link/network_address.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// A TCP connection that never blocks but where it is asked to wait. A peer that is gone without a word is
/// noticed: by probes after half a minute of silence, by a write that nobody acknowledges after 5 s.
class TcpConnection {
public:
    /// Looks the host up and connects within `limitMs`. Throws `RuntimeFailure` that says why it cannot.
    TcpConnection(const NetworkAddress& address, int limitMs);
    ~TcpConnection();
    TcpConnection(const TcpConnection&) = delete;
    TcpConnection& operator=(const TcpConnection&) = delete;

    /// Appends what has arrived, 4096 bytes at most, to `to`. False when the connection is over.
    bool Read(std::string& to);

    /// Hands bytes to the system: how many it has taken, nothing when the connection is over.
    std::optional<std::size_t> Write(std::string_view bytes);

    /// Waits until something has arrived, or the connection is over. False when it took longer.
    bool WaitForInput(int milliseconds);

    /// Waits until something can be written, or the connection is over. False when it took longer.
    bool WaitForRoom(int milliseconds);

    /// Whether the other side has ended the connection, as far as the system knows.
    bool Ended() const;

private:
    struct Socket; // what only the operating system's side needs
    std::unique_ptr<Socket> socket_;
};

} // namespace kavro
