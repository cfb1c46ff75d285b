#pragma once

#include "link/line.h"
#include "map/family_reads.h"
#include "map/module_record.h"

#include <cstdint>
#include <optional>
#include <string>

namespace kavro {

/// A module's answer to "$AA2", and how it was asked.
struct ConfigAnswer {
    std::int16_t Address = 0;  ///< asked, 0 to 255; a module in its initialisation state answers at 0
    std::int16_t Checksum = 0; ///< 1 = asked with checksum
    std::int16_t BaudCode = 0;
    std::string Reply; ///< "!AATTCCFF", of a converter "!AATTCCFFFF"
};

/// Asks for a module's configuration ("$AA2"). Nothing unless a whole reply "!" of 9 or 11 characters comes.
std::optional<ConfigAnswer> AskForConfig(Line& line, std::int16_t address, std::int16_t checksum,
                                         std::int16_t baudCode, ReplyTimes times);

/// The same with the line's reply time-out.
std::optional<ConfigAnswer> AskForConfig(Line& line, std::int16_t address, std::int16_t checksum,
                                         std::int16_t baudCode);

/// What became of an identification.
enum class Identified {
    No,      ///< the answer is noise that merely looks like a configuration; record partly changed
    Vaguely, ///< a module whose model, or whose codes for it, cannot be believed; never of the belief `Exact`
    Partly,  ///< a module, but not every further setting was answered well; those are as they were
    Fully,
};

/// Whether an answer can be believed: its form, the address asked (a module in its initialisation state may
/// name any), and but for that state the baud rate and checksum by which it was asked. Codes that depend on
/// the model are not looked at yet.
bool IsCredible(const ConfigAnswer& answer);

/// Fills `record` from the answer and the reads that follow: the model ("$AAM"), then the family's settings.
/// Unless the belief is `Exact`, what is not to be believed leaves its fields as they were, the model blank.
Identified IdentifyModule(Line& line, const ConfigAnswer& answer, ModuleRecord& record,
                          Belief belief = Belief::Exact);

/// Whether what was `found` now is to take the place of what was known `before`: a reading as good, but
/// without a model, is not.
bool TellsMore(Identified now, const ModuleRecord& found, Identified before);

/// Asks for a module's configuration and identifies it, with the belief `Repeated`; the whole once more when
/// that leaves anything open. An unknown model is believed when it is told twice. What was asked is in
/// `answer` but for its reply, which is filled in.
Identified AskModuleAgain(Line& line, ConfigAnswer& answer, ModuleRecord& record);

} // namespace kavro
