#pragma once

#include "project/module_reading.h"

#include <vector>

namespace kavro {

/// How a module of a line file is asked for: as the file has it, then as the list has it (`ContactOf`), then
/// at the rate of the file with the other checksum setting.
Contact KnownContact(const SavedModule& module, const Contact& listed);

/// Reads the modules of a line file: each as the file, then as the list of the session says how it is spoken
/// to; those that are silent then at address 00, as a module in its initialisation state answers there, and
/// at every baud rate, without and with a checksum. Returns a reading for each, in their order; the session
/// has another list afterwards. Throws `RuntimeFailure` when the port fails.
std::vector<ModuleReading> ReadSavedModules(const LineWork& work, const std::vector<SavedModule>& modules);

} // namespace kavro
