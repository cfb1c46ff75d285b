#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kavro {

// Whether replies are of the forms of `ReplyFormOf`, for everything that believes only what it has read well.
// The system's own dialogs and its exact search test less, which is theirs to decide.

/// What a reply of one module is measured by.
struct ReplyMeasure {
    std::string Address; ///< spoken to, two hexadecimal digits
    std::string
        OwnAddress; ///< that the module may name in its place; the same but in the initialisation state
    std::int16_t InputRange = 0; ///< range code, for readings and limits
    std::int16_t DataFormat = 0; ///< data format code, for readings
    std::string Model = {};      ///< for words and masks, which have no bits beyond the model's channels
};

/// Whether the form has the address in it.
bool NamesAddress(std::string_view form);

/// Whether the reply is of the form: exact length, address, digits, and numbers within the range.
///
/// In a form AA stands for the address, d for a decimal digit, h for a hexadecimal one in upper case, b, t, q
/// and o for a digit up to 1, 2, 3 and 7, z for "0", s for a sign; V for a reading in the module's range and
/// data format, E for a limit in the range's engineering units, O for an output value in the data format, P
/// for one of the 8320's, W for the words of digital outputs and inputs, C for a mask of analog channels, K
/// for a temperature, with sign and decimals, S for any number with sign, M for a model, T for any text.
/// Anything else stands for itself.
bool FitsForm(std::string_view reply, std::string_view form, const ReplyMeasure& measure);

/// The text of a good reply behind its class and address.
std::string ReplyData(std::string_view reply, std::string_view form);

/// Whether the reply is the refusal "?AA".
bool IsRefusal(std::string_view reply, const ReplyMeasure& measure);

/// Whether a configuration reply ("!AATTCCFF", of a converter "!AATTBCFFFF") that fits its form has codes
/// that the model has. Of an unknown model any are good.
bool HasModelsCodes(std::string_view reply, std::string_view model);

} // namespace kavro
