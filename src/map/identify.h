#pragma once

#include "link/line.h"
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
                                         std::int16_t baudCode);

/// What became of an identification.
enum class Identified {
    No,     ///< the answer is noise that merely looks like a configuration; record partly changed
    Partly, ///< a module, but not every further setting was answered with "!"; those are as they were
    Fully,
};

/// Fills `record` from the answer and the reads that follow: the model ("$AAM"), then the family's settings.
Identified IdentifyModule(Line& line, const ConfigAnswer& answer, ModuleRecord& record);

} // namespace kavro
