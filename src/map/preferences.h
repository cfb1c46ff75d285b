#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// What the user has chosen and the next start remembers, where COM.CFG has no place for it.
struct Preferences {
    bool FastSearch = false;
    std::int16_t AnswerWithin = 30; ///< of the fast search, ms, 5 to 1000
    std::string LineFile{};         ///< path of the line file that is open; empty: none

    bool operator==(const Preferences&) const = default;
};

} // namespace kavro
