#pragma once

#include "link/network_address.h"
#include "link/serial_port.h"
#include "ports/com_port_control.h"
#include "ports/server_greeting.h"
#include "ports/tcp_connection.h"

#include <memory>
#include <string>

namespace kavro {

/// How long a device server may take, in milliseconds.
struct NetworkLimits {
    int ConnectMs = 5000; ///< until there is a connection, the look-up of its name included
    int AgreeMs = 5000;   ///< until it has said whether it speaks RFC 2217
    int ReportMs = 1000;  ///< until it reports a setting, after which it counts as a late reporter
};

/// A serial port of a device server, reached over TCP: raw, where the server's own settings decide on the
/// rate, or with COM Port Control. Needs no event loop and has no thread. Failures do not name the device:
/// the owner does.
///
/// A connection that is lost is told by the next operation; from then on the port is simply not open.
class NetworkPort : public SerialPort {
public:
    /// Opens nothing yet.
    explicit NetworkPort(NetworkAddress address, const NetworkLimits& limits = {});

    /// Sets the rate through the server and awaits its report within the limit: a report of something else
    /// is a failure, none is taken for a late one. On a raw port only the text is looked at.
    void Settings(const std::string& text) override;
    void SetCommState(const std::string& text) override { Settings(text); }
    void PortOpen(bool open) override;
    bool PortOpen() const override { return connection_ && !lost_ && !connection_->Ended(); }
    int InBufferCount() override;
    std::string EmptyInBuffer() override;
    char Input() override;
    void Output(const std::string& text) override;
    bool WaitForInput(int milliseconds) override;

private:
    void Open();
    void Agree();
    void AwaitGreeting();
    bool Raw() const { return address_.Kind == NetworkKind::Raw; }
    void RequireOpen();
    void ThrowIfLost();
    std::string LostText() const;
    std::size_t Receive();
    bool AwaitMore(int milliseconds);
    void SendWaiting();
    void SendAll(const std::string& bytes);
    void Forget();

    NetworkAddress address_;
    NetworkLimits limits_;
    std::unique_ptr<TcpConnection> connection_; // null: not open
    ComPortClient client_;                      // unused on a raw port
    ServerGreeting greeting_;
    std::string chunk_;       // as received last
    std::string received_;    // handed out by character
    std::size_t next_ = 0;    // of `received_`
    std::string toSend_;      // what the system has not taken yet
    bool purgeFirst_ = false; // before the next command
    bool opening_ = false;
    bool inUse_ = false; // as the server said last
    bool lost_ = false;  // the connection is over and nobody has been told yet
};

} // namespace kavro
