#pragma once

#include <string_view>

namespace kavro {

/// Writes the whole text to the open file `file`, without waiting for the disk: the system has it, also when
/// the program dies. False, with the reason in errno, when it does not all fit.
bool WriteAll(int file, std::string_view text);

/// Writes the whole text to the open file `file` and waits until the disk has it. False, with the reason in
/// errno, when it does not all fit or the disk fails.
bool WriteThrough(int file, std::string_view text);

/// Waits until the disk has what was written. False, with the reason in errno, when the disk fails.
bool WaitForDisk(int file);

} // namespace kavro
