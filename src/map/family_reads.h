#pragma once

#include "link/line.h"
#include "map/module_record.h"
#include "map/reply_forms.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// How much a reply must be to be believed.
enum class Belief {
    Exact,    ///< as the system's own search has it: class and length
    Strict,   ///< of the command's form, from the module asked, with codes that the model has
    Repeated, ///< the same on a line that has fallen silent, and what is not is asked for once more
};

/// How a found module is spoken to, and what of it is believed.
struct ModuleContact {
    std::string AddressHex;    ///< two hexadecimal digits
    std::int16_t Checksum = 0; ///< 1 = with checksum
    std::int16_t BaudCode = 0;
    kavro::Belief Belief = kavro::Belief::Exact;
    ReplyMeasure Measure = {}; ///< unless the belief is `Exact`
};

/// Asks a command of the model, for example "$", "6". The good reply; nothing when it is none to be believed.
std::optional<std::string> AskContact(Line& line, const ModuleContact& contact, std::string_view model,
                                      char lead, const std::string& tail);

/// Decodes the baud code, checksum flag and format of a configuration reply ("!AATTCCFF", of a converter
/// "!AATTCCFFFF"). False, with the record unchanged, when the format is not hexadecimal.
bool DecodeConfigReply(const std::string& reply, const std::string& model, ModuleRecord& record);

/// Decodes a converter's format word (16 bits) into every field of the record that it fills.
void DecodeConverterFormat(std::int32_t word, ModuleRecord& record);

/// Sends the commands that read the further settings of the model's family, in order. A reply that is not
/// "!", not complete, or not to be believed leaves its own fields as they were; false when there was one.
bool ReadFamilySettings(Line& line, const std::string& model, const ModuleContact& contact,
                        ModuleRecord& record);

} // namespace kavro
