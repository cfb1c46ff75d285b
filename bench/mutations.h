#pragma once

#include "bench/random_run.h"

#include <string>
#include <vector>

namespace kavro {

/// A byte, more often one that stands in replies and settings files than any other.
inline char RandomByte(Dice& dice) {
    constexpr char Likely[] = "0123456789ABCDEFabcdef!?>#$%@~+-.,;:=eE xX\r\n\"{}[]\0\x7F\x80\xFF";
    return dice.Chance(0.7) ? Likely[dice.Below(sizeof Likely - 1)] : static_cast<char>(dice.Below(256));
}

inline std::string RandomText(Dice& dice, std::size_t longest) {
    std::string text(dice.Below(longest + 1), ' ');
    for (char& byte : text)
        byte = RandomByte(dice);
    return text;
}

/// One to four changes at random places: cut, doubled, dropped, inserted, replaced, a piece of `other`
/// pasted.
inline void Mutate(std::string& text, const std::string& other, Dice& dice) {
    for (std::size_t left = 1 + dice.Below(4); left > 0; --left) {
        const std::size_t place = dice.Below(text.size() + 1);
        const std::size_t count = 1 + dice.Below(3);
        switch (dice.Below(6)) {
        case 0:
            text.erase(place);
            break;
        case 1:
            text.insert(place, text.substr(place, count));
            break;
        case 2:
            text.erase(place, count);
            break;
        case 3:
            text.insert(place, count, RandomByte(dice));
            break;
        case 4:
            if (place < text.size())
                text[place] = RandomByte(dice);
            break;
        default:
            text.insert(place, other.substr(dice.Below(other.size() + 1)));
        }
    }
}

} // namespace kavro
