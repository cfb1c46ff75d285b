#pragma once

#include <string_view>

namespace kavro {

/// The form of the good reply to a command of a model: class, then what stands behind it, for example
/// "!AAhh", in the letters of `FitsForm`. `lead` and `tail` are what stands before and behind the address:
/// "$" and "6". Throws `RuntimeFailure` for a command that the model has not.
std::string_view ReplyFormOf(std::string_view model, char lead, std::string_view tail);

} // namespace kavro
