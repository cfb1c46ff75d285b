#pragma once

#include <cstdint>

namespace kavro {

/// What the user has chosen and the next start remembers, where COM.CFG has no place for it.
struct Preferences {
    bool FastSearch = false;
    std::int16_t AnswerWithin = 30; ///< of the fast search, ms, 5 to 1000

    bool operator==(const Preferences&) const = default;
};

} // namespace kavro
