#pragma once

#include "map/preferences.h"

#include <string>

namespace kavro {

/// The preferences in the INI file at `path`. What the file does not say, or says in a way that makes no
/// sense, is as it is at first.
Preferences ReadPreferences(const std::string& path);

/// Keeps the preferences in the file; everything else in it stays. Throws `RuntimeFailure` with path and
/// reason when they cannot be saved, with the file as it was.
void SavePreferences(const std::string& path, const Preferences& preferences);

} // namespace kavro
