#pragma once

#include "link/line_listener.h"
#include "map/reply_forms.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace kavro {

/// What came of a command of a line check.
enum class Verdict : std::uint8_t { Complete, Silent, Damaged, Refused };

/// What a damaged reply looks like.
enum class Damage : std::uint8_t {
    NoiseInFront,  ///< a whole good reply behind other characters
    WrongChecksum, ///< of the command's form but for that
    WrongAddress,  ///< the same
    Cut,           ///< no carriage return came
    Endless,       ///< so many characters that no module sends them
    OtherForm,     ///< a clean line that is not what the command asks for
    Garbled,       ///< anything else
};
inline constexpr int DamageCount = 7;

/// A reply as a line check counts it.
struct JudgedReply {
    kavro::Verdict Verdict = Verdict::Silent;
    kavro::Damage Damage = Damage::Garbled; ///< of a damaged one
    std::string Text;                       ///< without echo and carriage return, a good one without checksum
    bool AsListed = true; ///< a complete one tells no other model or set-up than the list, as far as is known
};

/// Judges what came of a command whose good reply is of this form.
JudgedReply JudgeReply(const LineTraffic& traffic, bool checksum, std::string_view form,
                       const ReplyMeasure& measure);

/// Whether all of it are characters that modules send.
bool IsClean(std::string_view text);

/// Whether the characters, carriage returns included, hold a whole good reply, or a refusal, of the module.
bool HoldsReply(std::string_view characters, bool checksum, std::string_view form,
                const ReplyMeasure& measure);

/// The most characters that such a reply has, its checksum included.
std::size_t LongestReply(std::string_view form, bool checksum);

} // namespace kavro
