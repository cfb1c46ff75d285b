#pragma once

#include "project/line_comparison.h"
#include "project/module_writing.h"

#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Why no module can take the place of that one, whatever is on the line: the file lacks what it takes, it
/// has no configuration, or its address is 0. A sentence; empty when one can.
std::string NotReplaceable(const SavedModule& saved);

/// Which settings of its model the file does not tell: they stay as the new module has them. A sentence;
/// empty when it tells all.
std::string KeptSettings(const SavedModule& saved);

/// What stands in the way of a replacement; a sentence, empty when nothing does.
///
/// Whether nothing answers at the address of the module that is to be replaced, at whatever rate. The session
/// has another list afterwards, as with all of these, which throw `RuntimeFailure` when the port fails.
std::string PlaceTaken(const LineWork& work, const SavedModule& saved);

/// The new module, which waits in its initialisation state.
struct NewModule {
    ModuleReading Reading;
    std::string Refusal{};                ///< why it cannot take the place; empty when it can
    bool OtherModel = false;              ///< that is why: asking it again changes nothing
    std::vector<LineDifference> Coming{}; ///< the settings that it will get, its address first
};

/// Looks for it at address 00 and 9600 baud. One that is silent, of another model, or does not tell all of
/// its settings is refused.
NewModule FindNewModule(const LineWork& work, const SavedModule& saved);

/// Writes everything that the file has: first what does not change how the module is spoken to, then address,
/// baud rate and checksum. In its initialisation state it answers at address 00 all the while, so that it is
/// not lost wherever this ends.
WrittenModule WriteReplacement(const LineWork& work, const SavedModule& saved, const ModuleReading& present);

/// Asks once at the place of the replaced module, and what it has otherwise than the file. Nothing while it
/// is silent or cannot be believed yet. It is the entry of the session then.
std::optional<ModuleComparison> LookAtReplacement(const LineWork& work, const SavedModule& saved);

/// Why it may be silent there: it still is in its initialisation state, or nothing is known. Sentences.
std::string WhySilent(const LineWork& work, const SavedModule& saved);

/// How far a replacement has come.
enum class ReplacementStage {
    Untouched, ///< nothing that changes the new module was sent
    Writing,   ///< it may have some of the settings
    Written,   ///< it has all of them, and is still in its initialisation state as far as is known
    InPlace,   ///< it answers at its place
};

/// In what state the new module is at that stage, and how to go on. Sentences.
std::string StateText(ReplacementStage stage, const SavedModule& saved);

/// The same in short, for the status bar; empty when there is nothing to tell.
std::string NoteText(ReplacementStage stage, const SavedModule& saved);

/// Puts the module that has come into its place, `record`, into the list of the session: in place of the
/// entry of its address, or as a new entry. The entry of a module in its initialisation state is that module
/// no more.
void TakeIntoList(Session& session, const ModuleRecord& record);

/// "19200 baud with a checksum", as the file has it.
std::string WayText(const SavedModule& saved);

/// What is said at the end, and at the steps before.
inline constexpr const char* CalibrationNotCopied =
    "The calibration is the new module's own and is not copied; calibrate it where the old one was "
    "calibrated.";
inline constexpr const char* PowerUpAdvice =
    "Power the module down, switch it out of its initialisation state, and power it up.";
inline constexpr const char* ConnectAdvice =
    "Connect the new module, switch it to its initialisation state, and power it up.";

} // namespace kavro
