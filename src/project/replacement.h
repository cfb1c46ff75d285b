#pragma once

#include "project/line_comparison.h"
#include "project/module_writing.h"

#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What stands in the way of a replacement; a sentence, empty when nothing does.
///
/// Whether nothing answers at the address of the module that is to be replaced, at whatever rate. The session
/// has another list afterwards, as with all of these, which throw `RuntimeFailure` when the port fails.
std::string PlaceTaken(const LineWork& work, const SavedModule& saved);

/// The new module, which waits in its initialisation state.
struct NewModule {
    ModuleReading Reading;
    std::string Refusal{};                ///< why it cannot take the place; empty when it can
    std::vector<LineDifference> Coming{}; ///< the settings that it will get
};

/// Looks for it at address 00 and 9600 baud. One that is silent, of another model, or does not tell all of
/// its settings is refused.
NewModule FindNewModule(const LineWork& work, const SavedModule& saved);

/// Writes everything that the file has: first what does not change how the module is spoken to, then address,
/// baud rate and checksum. In its initialisation state it answers at address 00 all the while, so that it is
/// not lost wherever this ends.
WrittenModule WriteReplacement(const LineWork& work, const SavedModule& saved, const ModuleReading& present);

/// Asks once at the place of the replaced module, and what it has otherwise than the file. Nothing while it
/// is silent.
std::optional<ModuleComparison> LookAtReplacement(const LineWork& work, const SavedModule& saved);

/// What is said at the end, and at the step before.
inline constexpr const char* CalibrationNotCopied =
    "The calibration is the new module's own and is not copied; calibrate it where the old one was "
    "calibrated.";
inline constexpr const char* PowerUpAdvice =
    "Power the module down, switch it out of its initialisation state, and power it up.";

} // namespace kavro
