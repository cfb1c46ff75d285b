#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// How a device server is spoken to.
enum class NetworkKind {
    Raw,     ///< "tcp://": characters alone; the server's own settings decide on the rate
    Rfc2217, ///< "rfc2217://": Telnet with COM Port Control, which sets the rate too
};

/// Where a serial port of a device server is found.
struct NetworkAddress {
    NetworkKind Kind = NetworkKind::Raw;
    std::string Host; ///< a name or a numeric address, without square brackets
    std::uint16_t Port = 0;
};

/// How the two forms are written, for help texts.
inline constexpr const char* NetworkForms = "tcp://HOST:PORT or rfc2217://HOST:PORT";

/// Whether a device is meant to be a network address ("scheme://..."), a wrong one too.
bool IsNetworkDevice(const std::string& device);

/// Reads "tcp://HOST:PORT" or "rfc2217://HOST:PORT", an IPv6 address in square brackets; capital letters in
/// the scheme are as good. Throws `RuntimeFailure` that says what is wrong with any other text.
NetworkAddress ParseNetworkAddress(const std::string& device);

/// The device text of an address.
std::string NetworkDevice(const NetworkAddress& address);

/// Reads where to listen: "HOST:PORT", or ":PORT" or "PORT" for this computer alone. Port 0 stands for any
/// that is free. Throws `RuntimeFailure` that says what is wrong with any other text.
NetworkAddress ParseListenAddress(const std::string& text, NetworkKind kind);

/// Reads "HOST:PORT" or "HOST" of a server with a usual port, an IPv6 address in square brackets. Throws
/// `RuntimeFailure` that says what is wrong with any other text.
NetworkAddress ParseServer(const std::string& text, std::uint16_t usualPort);

/// Throws as `ParseNetworkAddress` does for a device that is meant to be a network address and is none, and
/// for "replay:" without a file.
void RequireDeviceName(const std::string& device);

/// Whether two devices can be the same port of a device server: the same host, or the same TCP port of what
/// may be another name of the same host.
bool MayBeSameServerPort(const std::string& one, const std::string& other);

/// Whether the rate of a device is whatever its server is set to, so that choosing another has no effect.
bool RateIsFixed(const std::string& device);

/// What the user is told of such a device where a rate is chosen.
inline constexpr const char* FixedRateText =
    "A tcp:// port keeps the rate that its device server is set to: choose that rate. A search tries the "
    "first one alone. With rfc2217:// the rate is set through the server.";

} // namespace kavro
