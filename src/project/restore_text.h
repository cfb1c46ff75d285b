#pragma once

#include "project/restore.h"

#include <string>
#include <vector>

namespace kavro {

/// What a module that was written took of what the comparison offered, or did not take: sentences.
std::string WrittenText(const WrittenModule& module, const LineComparison& comparison);

/// What a restore that has ended leaves to be told: first how many modules took everything, then a sentence
/// for each module that was written and each that was left alone.
std::vector<std::string> WrittenTexts(const WrittenLine& written, const LineComparison& comparison);

/// A sentence for each module that was to be written and of which `written` says nothing, as the run was cut
/// off: all from that number on.
std::vector<std::string> UnfinishedTexts(const std::vector<WriteTarget>& targets, std::size_t written);

/// Which settings wait for the initialisation state of their modules, and what to do; empty when none do.
std::string AwaitingText(const LineComparison& comparison);

} // namespace kavro
