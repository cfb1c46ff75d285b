#pragma once

#include "project/module_writing.h"
#include "project/restore_journal.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Whether a difference is to be written.
using Choice = std::function<bool(const SavedModule& module, const LineDifference& difference)>;

/// Whether a difference can be written as its module is now: what needs the initialisation state only there.
bool CanBeWritten(const ModuleComparison& module, const LineDifference& difference);

/// Why a module is left alone whatever is chosen: it is silent, of another model, cannot be believed or has
/// no configuration. A sentence; empty when it can be written.
std::string LeftAloneText(const ModuleComparison& module);

/// The modules to be written: those with a difference that is chosen and can be written. Each is to have what
/// is chosen, and to keep the rest.
std::vector<WriteTarget> TargetsOf(const LineComparison& comparison, const Choice& choice);

/// What became of a line.
using WrittenLine = std::vector<WrittenModule>;

/// Writes the modules one after the other, with a journal beside the line file at `path`, which is removed
/// when all were gone through. Throws `RuntimeFailure` when the port or the journal fails, or the user ends
/// it; the journal then stays. `done` is told each module when it was gone through.
WrittenLine RestoreLine(
    const LineWork& work, const std::vector<WriteTarget>& targets, const std::string& path,
    const std::function<void(const WrittenModule& module)>& done = [](const WrittenModule&) {});

/// Makes the list's entry of a module that was written what it was read back as.
void TakeIntoList(Session& session, const WrittenModule& written);

/// A cut off run as a line file, to be compared with the line and gone on with.
LineFile FileOf(const CutOffRestore& cutOff);

/// What the user has to do for settings that need the initialisation state.
inline constexpr const char* InitialisationAdvice =
    "Baud rate and checksum can be changed only in the initialisation state: power the module down, switch "
    "it to that state, power it up, restore again, then power it down and up without that state.";

} // namespace kavro
