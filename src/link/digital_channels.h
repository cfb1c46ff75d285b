#pragma once

#include <string_view>

namespace kavro {

/// How many digital inputs and outputs a model has.
struct DigitalChannels {
    int Inputs = 0;  ///< bits 0 and up of the word of inputs
    int Outputs = 0; ///< bits 0 and up of the word of outputs
};

/// Of a digital I/O model; none for any other, nor for the 8460, whose lines change direction by ports.
DigitalChannels DigitalChannelsOf(std::string_view model);

} // namespace kavro
