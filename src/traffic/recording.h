#pragma once

#include "link/line_listener.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// What the first line of every recording begins with.
inline constexpr std::string_view RecordingStart = R"({"format":"kavro-recording")";
/// The version of the format that is written, and the highest that is read.
inline constexpr int RecordingVersion = 1;

/// The first line of a recording: when it began, and on which port.
struct RecordingHead {
    std::int64_t Utc = 0; ///< microseconds since 1970
    std::int16_t Port = 1;
    std::string Device; ///< path, network address or "demo"
};

/// A recording that was read.
struct Recording {
    RecordingHead Head;
    std::vector<LineTraffic> Traffic; ///< in the order in which it passed
};

/// The first line, with its line end. A device's name is UTF-8.
std::string RecordingHeadLine(const RecordingHead& head);

/// The line of an exchange, or of stray characters, with its line end. `tellEcho`: say that the adapter hands
/// back what is sent, as a recording does once.
std::string RecordingLine(const LineTraffic& traffic, bool tellEcho);

/// How an exchange ended, in a word, as recordings and tables have it.
std::string_view OutcomeName(TrafficOutcome outcome);

} // namespace kavro
