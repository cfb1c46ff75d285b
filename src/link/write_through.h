#pragma once

#include <string_view>

namespace kavro {

/// Writes the whole text to the open file `file` and waits until the disk has it. False, with the reason in
/// errno, when it does not all fit or the disk fails.
bool WriteThrough(int file, std::string_view text);

} // namespace kavro
