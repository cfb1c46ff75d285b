#include "link/network_address.h"

#include "link/port_devices.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace kavro {

namespace {

constexpr std::string_view SchemeEnd = "://";
constexpr const char* Loopback = "127.0.0.1";
constexpr std::size_t LongestHost = 253; // of a name in the domain name system
constexpr std::int32_t HighestPort = 65535;

struct Scheme {
    const char* Name;
    NetworkKind Kind;
};
constexpr Scheme Schemes[] = {{"tcp", NetworkKind::Raw}, {"rfc2217", NetworkKind::Rfc2217}};

bool IsLetterOrDigit(char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

std::string Lower(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return text;
}

[[noreturn]] void Refuse(const std::string& given, const std::string& why) {
    throw RuntimeFailure("The address \"" + given + "\" " + why);
}

std::uint16_t PortIn(const std::string& text, const std::string& given, std::int32_t lowest = 1) {
    const auto number = CappedNumber(text);
    if (!number || *number < lowest || *number > HighestPort || text.size() > 5)
        Refuse(given, "needs a port number from 1 to 65535 behind the host, for example HOST:5000.");
    return static_cast<std::uint16_t>(*number);
}

// A name or an IPv4 address. Letters of other scripts are left to the name service.
bool IsHostName(const std::string& host) {
    return !host.empty() && host.size() <= LongestHost && std::ranges::all_of(host, [](char character) {
        return IsLetterOrDigit(character) || static_cast<unsigned char>(character) >= 0x80 ||
               character == '.' || character == '-' || character == '_';
    });
}

// Up to four hexadecimal digits; the last group may be an IPv4 address, which stands for two.
int GroupsIn(const std::string& group, bool last) {
    const bool dotted = last && group.find('.') != std::string::npos;
    const bool digits = std::ranges::all_of(group, [dotted](char character) {
        return std::isxdigit(static_cast<unsigned char>(character)) != 0 || (dotted && character == '.');
    });
    return digits && !group.empty() && (dotted || group.size() <= 4) ? (dotted ? 2 : 1) : 9;
}

// Eight groups between colons, or fewer around one "::"; an interface may follow "%", as link-local addresses
// need it.
bool IsIpv6(const std::string& host) {
    const std::string text = host.substr(0, host.find('%'));
    const auto gap = text.find("::");
    int groups = 0;
    for (std::size_t begin = 0, end = 0; begin <= text.size(); begin = end + 1) {
        end = std::min(text.find(':', begin), text.size());
        const bool inGap = gap != std::string::npos && end >= gap && begin <= gap + 2 && begin == end;
        groups += inGap ? 0 : GroupsIn(text.substr(begin, end - begin), end == text.size());
    }
    const bool zone = text.size() == host.size() || IsHostName(host.substr(text.size() + 1));
    return zone && text.find(":::") == std::string::npos &&
           (gap == std::string::npos ? groups == 8 : groups <= 7);
}

struct HostAndPort {
    std::string Host, Port;
};

HostAndPort BracketedHost(const std::string& text, const std::string& given) {
    const auto end = text.find("]:");
    if (end == std::string::npos || !IsIpv6(text.substr(1, end - 1)))
        Refuse(given, "is no IPv6 address with a port: write it like [fe80::1]:5000.");
    return {text.substr(1, end - 1), text.substr(end + 2)};
}

HostAndPort NamedHost(const std::string& text, const std::string& given) {
    const auto colon = text.find(':');
    if (colon == std::string::npos)
        Refuse(given, "names no port: write HOST:PORT, for example HOST:5000.");
    if (text.find(':', colon + 1) != std::string::npos)
        Refuse(given, "has more than one colon: an IPv6 address stands in square brackets, like "
                      "[fe80::1]:5000.");
    if (!IsHostName(text.substr(0, colon)))
        Refuse(given, "names no host: write a name or a numeric address before the colon.");
    return {text.substr(0, colon), text.substr(colon + 1)};
}

HostAndPort PartsOf(const std::string& text, const std::string& given) {
    return text.starts_with('[') ? BracketedHost(text, given) : NamedHost(text, given);
}

} // namespace

bool IsNetworkDevice(const std::string& device) {
    const auto end = device.find(SchemeEnd);
    return end != std::string::npos && end > 0 &&
           std::all_of(device.begin(), device.begin() + static_cast<std::ptrdiff_t>(end), [](char character) {
               return IsLetterOrDigit(character) || character == '+' || character == '-';
           });
}

std::string NetworkDevice(const NetworkAddress& address) {
    const auto* const scheme = std::ranges::find(Schemes, address.Kind, &Scheme::Kind);
    const bool ipv6 = address.Host.find(':') != std::string::npos;
    return scheme->Name + std::string(SchemeEnd) + (ipv6 ? "[" + address.Host + "]" : address.Host) + ":" +
           std::to_string(address.Port);
}

NetworkAddress ParseListenAddress(const std::string& text, NetworkKind kind) {
    const bool portAlone = text.find(':') == std::string::npos;
    if (portAlone || text.starts_with(':'))
        return {kind, Loopback, PortIn(text.substr(portAlone ? 0 : 1), text, 0)};
    const HostAndPort parts = PartsOf(text, text);
    return {kind, parts.Host, PortIn(parts.Port, text, 0)};
}

NetworkAddress ParseServer(const std::string& text, std::uint16_t usualPort) {
    const bool hostAlone = text.starts_with('[') ? text.ends_with(']') : text.find(':') == std::string::npos;
    const HostAndPort parts = PartsOf(hostAlone ? text + ":" + std::to_string(usualPort) : text, text);
    return {NetworkKind::Raw, parts.Host, PortIn(parts.Port, text)};
}

NetworkAddress ParseNetworkAddress(const std::string& device) {
    const auto end = device.find(SchemeEnd);
    const std::string name = Lower(device.substr(0, end));
    const auto* const scheme = std::ranges::find(Schemes, name, &Scheme::Name);
    if (end == std::string::npos || scheme == std::end(Schemes))
        Refuse(device, std::string("is no kind of port that is known: write ") + NetworkForms + ".");
    const HostAndPort parts = PartsOf(device.substr(end + SchemeEnd.size()), device);
    return {scheme->Kind, parts.Host, PortIn(parts.Port, device)};
}

void RequireDeviceName(const std::string& device) {
    if (IsNetworkDevice(device))
        ParseNetworkAddress(device);
    if (IsReplay(device) && ReplayPath(device).empty())
        throw RuntimeFailure("The device \"" + device + "\" names no recording: write replay:FILE.");
}

bool MayBeSameServerPort(const std::string& one, const std::string& other) {
    if (!IsNetworkDevice(one) || !IsNetworkDevice(other))
        return false;
    const NetworkAddress a = ParseNetworkAddress(one), b = ParseNetworkAddress(other);
    return a.Port == b.Port || Lower(a.Host) == Lower(b.Host);
}

bool RateIsFixed(const std::string& device) {
    return Lower(device.substr(0, device.find(SchemeEnd))) == Schemes[0].Name && IsNetworkDevice(device);
}

} // namespace kavro
