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

/// What a run that was cut off was to do with modules that do not answer, or are not compared, now: all that
/// is known of them. Empty when there are none.
CutOffRestore UnreachedOf(const std::optional<CutOffRestore>& cutOff, const LineComparison& comparison);

/// A restore of a line.
struct RestoreRun {
    std::vector<WriteTarget> Targets;
    std::string Path;          ///< of the line file, beside which the journal stands
    CutOffRestore Unreached{}; ///< by a run before; the journal keeps it
    /// Told each module when it was gone through.
    std::function<void(const WrittenModule& module)> Done = [](const WrittenModule&) {};
};

/// Writes the modules one after the other, with a journal, which is removed when all were gone through and
/// nothing is unreached. Throws `RuntimeFailure` when the port or the journal fails, or the user ends it; the
/// journal then stays.
WrittenLine RestoreLine(const LineWork& work, const RestoreRun& run);

/// Makes the list's entry of a module that was written what it was read back as.
void TakeIntoList(Session& session, const WrittenModule& written);

/// A cut off run as a line file, to be compared with the line and gone on with.
LineFile FileOf(const CutOffRestore& cutOff);

/// What the user has to do for settings that need the initialisation state.
inline constexpr const char* InitialisationAdvice =
    "Baud rate and checksum can be changed only in the initialisation state: power the module down, switch "
    "it to that state, power it up, restore again, then power it down and up without that state.";

} // namespace kavro
