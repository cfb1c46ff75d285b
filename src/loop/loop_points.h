#pragma once

#include "project/line_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// What a channel is to a loop check.
enum class LoopKind : std::uint8_t {
    AnalogInput,
    DigitalInput,
    Counter,
    Frequency,
    AnalogOutput,
    DigitalOutput,
};

/// "analog input", "counter", ...
const char* LoopKindText(LoopKind kind);

/// The kind that a text of `LoopKindText` names; nothing for another text.
std::optional<LoopKind> LoopKindNamed(std::string_view text);

inline bool IsOutput(LoopKind kind) {
    return kind == LoopKind::AnalogOutput || kind == LoopKind::DigitalOutput;
}

/// One channel that is checked from its terminals to this program.
struct LoopPoint {
    std::int16_t Address = 0; ///< of its module, 0 to 255
    std::string Model;        ///< "8250"
    int Channel = 0;          ///< as in `ModuleTags::Channels`
    std::string Name;         ///< where the number alone does not say which it is: "output 3"
    std::string Tag, Note;    ///< of the line file; empty when it has none
    LoopKind Kind = LoopKind::AnalogInput;
    bool Disabled = false; ///< the line file has it switched off in the module

    bool operator==(const LoopPoint&) const = default;
};

/// Whether both are the same channel of the same module, whatever it is called.
bool SamePlace(const LoopPoint& left, const LoopPoint& right);

/// Whether `left` comes before `right`, where runs of digits count as numbers: "TT-2" before "TT-10".
/// Case of ASCII letters counts last.
bool TagBefore(std::string_view left, std::string_view right);

/// All channels of a line in the order in which they are checked: those with a tag by it, then the others by
/// address and channel. A port of the 8460 is what the file says of its direction, an input where it does not
/// tell, as nothing is driven then. Analog channels that are switched off are left out unless they have a
/// tag.
std::vector<LoopPoint> LoopPointsOf(const LineFile& file);

/// Which channel of its module it is: "channel 2", "output 3"; empty of a module with one.
std::string ChannelText(const LoopPoint& point);

/// What it is called for short: its tag, else "5 (05H), channel 2".
std::string ShortName(const LoopPoint& point);

/// Where it is: "8250 at address 5 (05H), channel 2".
std::string PlaceText(const LoopPoint& point);

} // namespace kavro
