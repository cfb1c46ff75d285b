#pragma once

#include <string>
#include <vector>

namespace kavro {

/// Everything that can happen to one place of a reply (without its carriage return): cut before it, doubled,
/// dropped, or replaced by every printable character, some control characters (a carriage return among them)
/// and some with the high bit set.
inline std::vector<std::string> DamagesOf(const std::string& reply) {
    constexpr char Others[] = {'\0', '\a', '\n', '\r', '\x11', '\x1B', '\x7F', '\x80', '\xB0', '\xFF'};
    std::vector<std::string> damages;
    for (std::size_t place = 0; place < reply.size(); ++place) {
        const char original = reply[place];
        damages.push_back(reply.substr(0, place));
        damages.push_back(std::string(reply).insert(place, 1, original));
        damages.push_back(std::string(reply).erase(place, 1));
        const auto replace = [&](char character) {
            damages.push_back(reply);
            damages.back()[place] = character;
        };
        for (char character = ' '; character <= '~'; ++character)
            if (character != original)
                replace(character);
        for (const char character : Others)
            replace(character);
        replace(static_cast<char>(original ^ '\x80'));
    }
    return damages;
}

} // namespace kavro
