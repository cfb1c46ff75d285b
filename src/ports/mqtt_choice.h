#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// Which broker is spoken to, and how.
struct MqttChoice {
    bool Tls = false;
    std::string Host{}; ///< a name or a numeric address, without square brackets
    std::uint16_t Port = 0;
    std::string Prefix{};                  ///< of all topics: levels with "/" between them
    std::string User{};                    ///< empty: none
    std::optional<std::string> Password{}; ///< only with a user
    std::string CaFile{};                  ///< of those who are trusted, PEM; empty: as the system trusts
    std::string CertFile{}, KeyFile{};     ///< to show the broker who this is, PEM; may be empty
};

/// Reads "mqtt://HOST[:PORT]/PREFIX" or "mqtts://...", whose ports are 1883 and 8883 unless they are named.
/// Throws `RuntimeFailure` for any other text, one with a user or a password in it, too, which is not shown.
MqttChoice ParseMqttAddress(const std::string& address);

/// Where a broker is, for the user: "localhost:1883".
std::string PlaceOf(const MqttChoice& choice);

} // namespace kavro
