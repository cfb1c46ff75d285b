#pragma once

#include "traffic/check_commands.h"
#include "traffic/reply_verdict.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// How the replies to one command of a module were.
struct CommandTally {
    CheckCommand Command;
    int Asked = 0;
    int Answered = 0; ///< not silent
    int Complete = 0;
    int Other = 0;                               ///< of these with another model or set-up than the list's
    int OtherForm = 0;                           ///< clean lines that are not what the command asks for
    int Garbled = 0;                             ///< damaged in a way that two replies at once may look like
    int Overlong = 0;                            ///< of these with more than one character too many
    int Unclean = 0;                             ///< of these with characters that no module sends
    std::size_t CommonStart = std::string::npos; ///< characters that all garbled replies begin with alike
    std::string GarbledText{};                   ///< one of them
    std::map<std::string, int> OtherShapes{};    ///< of clean lines of another form, all digits alike
    std::map<std::string, int> Good{};           ///< complete replies, when they are to stay the same

    /// Most of the replies tell another model or set-up than the list.
    bool TellsAnother() const { return 2 * Other > Answered; }
};

/// Reply times in milliseconds, from the end of sending to the last character.
struct ReplyMs {
    double Min = 0, Median = 0, P95 = 0, Max = 0;
};

/// What a line check found of one module.
struct ModuleCheck {
    int Index = 0;            ///< entry of the list
    std::int16_t Address = 0; ///< its own; spoken to at 00 in the initialisation state
    std::string Model;        ///< without blanks
    std::int32_t Baud = 9600; ///< it is spoken to at
    bool Checksum = false;    ///< and with

    int Sent = 0; ///< `Complete` + `Silent` + `Damaged` + `Refused`
    int Complete = 0, Silent = 0, Damaged = 0, Refused = 0;
    std::int64_t Stray = 0; ///< further characters, behind its replies or in place of them

    int Slow = 0;   ///< complete replies that came near the time-out in use
    int Late = 0;   ///< silent, with a reply after the long time-out
    int Behind = 0; ///< complete, with a second reply right behind
    std::array<int, DamageCount> Damages{};
    std::vector<std::int64_t> TimesUs{}; ///< of complete replies
    std::vector<CommandTally> Tallies{};

    /// Never answered, not even late.
    bool Dead() const { return Sent > 0 && Silent == Sent && Late == 0 && Stray == 0; }

    /// Its clean replies tell, most of the time and in the same way, that it is another model than in the
    /// list, or set otherwise.
    bool IsAnother() const;

    /// Counts a reply to `Tallies[command]`.
    void Note(std::size_t command, const JudgedReply& reply);
};

/// Nothing when no reply was complete.
std::optional<ReplyMs> TimesOf(const ModuleCheck& module);

} // namespace kavro
