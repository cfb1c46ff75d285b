#pragma once

#include "link/wall_time.h"
#include "monitor/module_values.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// A value that a module gave, or why it gave none, as a history keeps it.
struct Reading {
    WallTime Time;
    std::int16_t Address = 0;
    std::string Model; ///< as shown, without blanks around it
    ChannelValue Value;
};

/// The readings of a turn on entry `index`; a disabled channel has none.
std::vector<Reading> ReadingsOf(const Session& session, int index, const std::vector<ChannelValue>& values,
                                const WallTime& time);

/// Where readings are kept or sent.
class ReadingSink {
public:
    ReadingSink() = default;
    virtual ~ReadingSink() = default;
    ReadingSink(const ReadingSink&) = delete;
    ReadingSink& operator=(const ReadingSink&) = delete;

    /// Takes the readings of a turn. Must not throw and must not wait for anything but the local disk: what
    /// goes wrong later is told by the sink itself, once, and the readings that come are taken again as soon
    /// as that is possible.
    virtual void Take(const std::vector<Reading>& readings) = 0;
};

} // namespace kavro
