#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A channel of a module that can have a tag.
struct TaggedChannel {
    int Number = 0;   ///< as in `ModuleTags::Channels`
    std::string Name; ///< where the number alone does not say which it is: "output 3"

    bool operator==(const TaggedChannel&) const = default;
};

/// The channels of a model by number: analog inputs and counters by their own, analog outputs A to D as 0 to
/// 3, the lines of the 8460 as the bits of its word of levels. Of a digital module the inputs come first and
/// its outputs behind them; digital lines beside analog channels stand behind these. None for a model without
/// channels.
std::vector<TaggedChannel> TaggedChannelsOf(std::string_view model);

} // namespace kavro
