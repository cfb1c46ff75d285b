#pragma once

#include <string>

namespace kavro {

/// Path of COM.CFG: in the Windows directory on Windows, else in $XDG_CONFIG_HOME/kavro, by default
/// ~/.config/kavro. The demo keeps its own in the subfolder "demo". The folder need not exist.
std::string ConfigFilePath(bool demo);

/// Path of ports.ini, which stands beside COM.CFG.
std::string PortsFilePath(bool demo);

/// Path of settings.ini, which stands beside COM.CFG and has what that has no place for.
std::string PreferencesFilePath(bool demo);

/// Path of the spool of a line, which has the name of a line in a history: in $XDG_DATA_HOME/kavro, by
/// default
/// ~/.local/share/kavro. The folder need not exist.
std::string SpoolFilePath(const std::string& line);

/// Path of the map that is kept when the program ends: "admin.map" in the current directory, of the demo
/// beside its COM.CFG.
std::string MapFilePath(bool demo);

} // namespace kavro
