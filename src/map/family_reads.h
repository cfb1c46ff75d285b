#pragma once

#include "link/line.h"
#include "map/module_record.h"

#include <cstdint>
#include <string>

namespace kavro {

/// How a found module is spoken to.
struct ModuleContact {
    std::string AddressHex;    ///< two hexadecimal digits
    std::int16_t Checksum = 0; ///< 1 = with checksum
    std::int16_t BaudCode = 0;
};

/// Decodes the baud code, checksum flag and format of a configuration reply ("!AATTCCFF", of a converter
/// "!AATTCCFFFF"). False, with the record unchanged, when the format is not hexadecimal.
bool DecodeConfigReply(const std::string& reply, const std::string& model, ModuleRecord& record);

/// Decodes a converter's format word (16 bits) into every field of the record that it fills.
void DecodeConverterFormat(std::int32_t word, ModuleRecord& record);

/// Sends the commands that read the further settings of the model's family, in order. A reply that is not "!"
/// or not complete leaves its own fields as they were; false when there was one.
bool ReadFamilySettings(Line& line, const std::string& model, const ModuleContact& contact,
                        ModuleRecord& record);

} // namespace kavro
