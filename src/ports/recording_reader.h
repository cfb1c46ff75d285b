#pragma once

#include "traffic/recording.h"

#include <string>

namespace kavro {

/// Reads a recording. What a program that was killed did not end is passed over: the last line, be it the
/// first one too. Throws `RuntimeFailure` that names the file, and the line, for everything else that is
/// wrong.
Recording ReadRecording(const std::string& path);

} // namespace kavro
