#pragma once

#include "link/network_address.h"
#include "link/runtime_failure.h"

#include <array>
#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace kavro {

/// A server on a free port of the loopback: every client is handed to `play` in turn, in a thread of its own,
/// and closed after it.
class TcpPeer {
public:
    explicit TcpPeer(std::function<void(TcpPeer& peer)> play) : play_(std::move(play)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (bind(listener_, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(listener_, 4) != 0)
            throw RuntimeFailure("No TCP port can be listened at.");
        getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        Port = ntohs(address.sin_port);
        thread_ = std::thread([this] { Serve(); });
    }
    ~TcpPeer() {
        ending_ = true;
        shutdown(listener_, SHUT_RDWR);
        thread_.join();
        close(listener_);
    }
    TcpPeer(const TcpPeer&) = delete;
    TcpPeer& operator=(const TcpPeer&) = delete;

    NetworkAddress Address(NetworkKind kind) const { return {kind, "127.0.0.1", Port}; }

    /// False when the client is gone.
    bool Say(const std::string& bytes) const {
        return send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL) > 0;
    }

    /// What the client sends next; empty when it is gone, or the test ends.
    std::string Hear() const {
        std::array<char, 512> bytes{};
        pollfd wait = {client_, POLLIN, 0};
        while (poll(&wait, 1, 10) == 0)
            if (ending_)
                return {};
        const ssize_t size = recv(client_, bytes.data(), bytes.size(), 0);
        return {bytes.data(), static_cast<std::size_t>(size > 0 ? size : 0)};
    }

    std::uint16_t Port = 0;

private:
    void Serve() {
        while ((client_ = accept(listener_, nullptr, nullptr)) >= 0) {
            play_(*this);
            close(client_);
        }
    }

    std::function<void(TcpPeer&)> play_;
    int listener_ = socket(AF_INET, SOCK_STREAM, 0);
    int client_ = -1;
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

} // namespace kavro
