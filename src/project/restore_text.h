#pragma once

#include "project/restore.h"

#include <string>
#include <vector>

namespace kavro {

/// What a restore that has ended leaves to be told: first how many modules took everything, then a sentence
/// for each module that was written and each that was left alone.
std::vector<std::string> WrittenTexts(const WrittenLine& written, const LineComparison& comparison);

/// Whether any difference waits for the initialisation state of its module.
bool AwaitsInitialisation(const LineComparison& comparison);

} // namespace kavro
