#pragma once

#include "link/clock.h"
#include "link/network_address.h"
#include "ports/side_input.h"
#include "sim/transmission.h"

#include <memory>
#include <string>

namespace kavro {

/// Serves a simulated line over TCP, as a device server does, at real speed: raw, at one rate, or with COM
/// Port Control, at the rate that the client sets. One client at a time: another one is told in words and
/// sent away. Goes on when the client leaves.
class TcpServer {
public:
    /// Listens. `baud` is the rate of the line, with COM Port Control until a client sets another. Line and
    /// clock must outlive the server. Throws `RuntimeFailure` when the address cannot be listened at.
    TcpServer(SimulatedLine& line, Clock& clock, const NetworkAddress& address, int baud);
    ~TcpServer();
    TcpServer(const TcpServer&) = delete;
    TcpServer& operator=(const TcpServer&) = delete;

    /// What a client on this computer opens: "tcp://127.0.0.1:5000".
    std::string Device() const;

    /// Serves until `Stop` is called or `stopDescriptor` (ignored when negative) becomes readable. Takes
    /// what comes at `input` meanwhile, whose end changes nothing. Sleeps whenever there is nothing to do.
    void Run(int stopDescriptor = -1, SideInput input = {});

    /// Makes `Run` return; may be called from any thread, and before `Run`.
    void Stop();

private:
    struct Listener; // what only the operating system's side needs
    void Accept();
    void Leave();
    void Hear();
    void Speak();
    void Send(const std::string& bytes);

    NetworkAddress address_;
    std::unique_ptr<Listener> listener_;
    Transmission transmission_;
    Clock& clock_;
    int baud_;
};

} // namespace kavro
