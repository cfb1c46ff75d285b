#include "ports/mqtt_choice.h"

#include "link/network_address.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "monitor/published.h"

#include <algorithm>
#include <string_view>

namespace kavro {

namespace {

struct Scheme {
    std::string_view Name;
    bool Tls;
    std::uint16_t Port;
};
constexpr Scheme Schemes[] = {{"mqtt", false, 1883}, {"mqtts", true, 8883}};
constexpr std::string_view SchemeEnd = "://";

} // namespace

MqttChoice ParseMqttAddress(const std::string& address) {
    const auto end = address.find(SchemeEnd);
    const auto* const scheme = std::ranges::find_if(
        Schemes, [&](const Scheme& each) { return SameText(address.substr(0, end), each.Name); });
    const std::size_t begin = end + SchemeEnd.size();
    const auto slash = end == std::string::npos ? end : address.find('/', begin);
    // A password may have a "/" in it, so no part of such an address is told.
    if (const auto at = address.find('@'); at != std::string::npos) {
        const bool password = address.find(':', end == std::string::npos ? 0 : begin) < at;
        throw RuntimeFailure(
            password
                ? "The address of the broker has a password in it, which everybody on this computer could "
                  "see. Leave it out; give --mqtt-user, and --mqtt-password-file or the variable "
                  "KAVRO_MQTT_PASSWORD."
                : "The address of the broker has an '@' in it. Leave the user out, and give --mqtt-user.");
    }
    if (end == std::string::npos || scheme == std::end(Schemes))
        throw RuntimeFailure(
            "That is no address of a broker. Write mqtt://HOST[:PORT]/PREFIX, or mqtts:// for a connection "
            "with TLS.");
    const std::string server = address.substr(begin, slash - begin);
    if (address.find('?') != std::string::npos) // a password maybe
        throw RuntimeFailure("The address of a broker has no '?' in it. Write mqtt://HOST[:PORT]/PREFIX, and "
                             "give what else is needed by options.");
    MqttChoice choice{.Tls = scheme->Tls};
    try {
        const NetworkAddress parsed = ParseServer(server, scheme->Port);
        choice.Host = parsed.Host;
        choice.Port = parsed.Port;
    } catch (const RuntimeFailure&) { // which shows the address
        throw RuntimeFailure("The address of the broker needs a host, and a port number from 1 to 65535 or "
                             "none. An IPv6 address stands in square brackets.");
    }
    choice.Prefix = slash == std::string::npos ? std::string() : address.substr(slash + 1);
    RequireTopicPrefix(choice.Prefix);
    return choice;
}

std::string PlaceOf(const MqttChoice& choice) {
    const bool ipv6 = choice.Host.find(':') != std::string::npos;
    return (ipv6 ? "[" + choice.Host + "]" : choice.Host) + ":" + std::to_string(choice.Port);
}

} // namespace kavro
