#pragma once

#include <string_view>

namespace kavro {

/// The form of the good reply to a command of a model: class, then what stands behind it, for example
/// "!AAhh". `lead` and `tail` are what stands before and behind the address: "$" and "6". Throws
/// `RuntimeFailure` for a command that the model has not.
///
/// AA stands for the address, d for a decimal digit, h for a hexadecimal one in upper case, b, t, q and o for
/// a digit up to 1, 2, 3 and 7, z for "0", s for a sign; V for a reading in the module's range and data
/// format, E for a number in the range's engineering units, O for an output value in the data format, S for
/// any number with sign, M for a model, T for any text. Anything else stands for itself.
std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail);

} // namespace kavro
