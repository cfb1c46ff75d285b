#pragma once

#include "map/session.h"

#include <string>

namespace kavro {

/// Writes the module list, exactly as shown, to a text file. Throws `RuntimeFailure` when it cannot be
/// created.
void WriteMapFile(const Session& session, const std::string& path);

/// What is kept when the program ends, in this order: closes the current port, writes COM.CFG, and writes the
/// map to `MapFilePath`. An empty map that takes the place of one with modules keeps that beside it as
/// "admin.map.old". A failure of one does not keep the next from running; what could not be saved is
/// returned for the user, with the reasons, empty when everything was.
std::string SaveSettings(Session& session);

} // namespace kavro
