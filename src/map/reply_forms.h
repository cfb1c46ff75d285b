#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kavro {

// What a good reply to each command is, for everything that believes only what it has read well. The system's
// own dialogs and its exact search test less, which is theirs to decide.

/// What a reply of one module is measured by.
struct ReplyMeasure {
    std::string Address; ///< spoken to, two hexadecimal digits
    std::string
        OwnAddress; ///< that the module may name in its place; the same but in the initialisation state
    std::int16_t InputRange = 0; ///< range code, for readings and limits
    std::int16_t DataFormat = 0; ///< data format code, for readings
};

/// Whether the form has the address in it.
bool NamesAddress(std::string_view form);

/// Whether the reply is of the form: exact length, address, digits, and numbers within the range.
bool FitsForm(std::string_view reply, std::string_view form, const ReplyMeasure& measure);

/// The text of a good reply behind its class and address.
std::string ReplyData(std::string_view reply, std::string_view form);

/// Whether a configuration reply ("!AATTCCFF", of a converter "!AATTBCFFFF") that fits its form has codes
/// that the model has. Of an unknown model any are good.
bool HasModelsCodes(std::string_view reply, std::string_view model);

} // namespace kavro
