#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// Where a PostgreSQL database is found, and by whom.
struct PostgresAddress {
    std::string User, Host;
    std::uint16_t Port = 5432;
    std::string Database;
};

/// How it is written, for help texts.
inline constexpr const char* PostgresForm = "postgresql://USER@HOST[:PORT]/DATABASE";

/// Whether a text is meant to be such an address, a wrong one too: nothing of it is shown, as it may have a
/// password.
bool IsPostgresAddress(const std::string& text);

/// Reads one: an IPv6 address in square brackets, "%40" for a character that means something there. Throws
/// `RuntimeFailure` that says what is wrong with any other text, also with a password, which everybody could
/// see.
PostgresAddress ParsePostgresAddress(const std::string& text);

} // namespace kavro
