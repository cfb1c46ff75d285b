#pragma once

#include <cstdint>
#include <string>

namespace kavro {

/// Writes to standard output at once. False when it is a pipe that nobody reads any more, which is nothing to
/// complain of. Throws `RuntimeFailure` when it cannot be written.
bool PrintOut(const std::string& text);

/// One line on standard error, led by the program's name; control characters become "?".
void PrintNote(const std::string& text);

/// A reply time-out in ms. Throws `RuntimeFailure` below 100 and above 6553, whose fivefold, the long
/// time-out, would not fit.
std::int16_t ParseTimeout(const std::string& text);

/// A number of passes, 1 to 32767. Throws `RuntimeFailure` for any other text.
std::int16_t ParsePasses(const std::string& text);

} // namespace kavro
