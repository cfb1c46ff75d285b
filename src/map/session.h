#pragma once

#include "link/append_file.h"
#include "link/line.h"
#include "link/text.h"
#include "map/module_record.h"
#include "map/module_tags.h"
#include "map/preferences.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// Replaces the file at a path by these bytes, whole or not at all. Throws `RuntimeFailure` with path and
/// reason when it cannot; the old file is then still whole.
using FileReplacer = std::function<void(const std::string& path, const std::string& content)>;

/// Characters that Repeat Command keeps of a command.
inline constexpr std::size_t RepeatCommandWidth = 16;

/// All that lives for the whole run; handed down by reference to every dialog and operation.
struct Session {
    Session(SerialPorts ports, Clock& clock) : Line(std::move(ports), clock) {}

    kavro::Line Line;
    kavro::ModuleTable ModuleTable;
    std::vector<std::string> Device; ///< lines of the module list; the index is the `ModuleTable` index

    std::int16_t ModuleCount = 0; ///< valid entries of `ModuleTable`; written when a search ends
    std::int16_t ScanIndex =
        0; ///< entry found in its initialisation state, -1 none; 0 before the first search
    std::int16_t SelectedModule = -1; ///< selected entry, -1 when none

    /// By the address spoken to: `Line.IncompleteCount` when an exchange with the module there whose reply
    /// names its address last went well; -1 never. While it is the present one, a reply without an address is
    /// believed.
    std::array<std::int64_t, kavro::ModuleTable::Size> BelievedSince = NeverBelieved();

    std::int16_t ConfigResult = 0;      ///< 1: a configuration dialog changed the module, 2: it did not
    std::string Note;                   ///< what a dialog that has closed has left to tell
    std::int16_t SearchAccepted = 0;    ///< -1 when the search dialog was accepted
    std::int16_t SearchHighAddress = 0; ///< highest address to probe, 0 to 255

    std::string RepeatCommandText =
        FixedText("", RepeatCommandWidth); ///< command of the terminal's Repeat Command, always that wide
    std::int16_t RepeatCommandCount = 0;   ///< how often Repeat Command sends it
    std::int16_t BatchRepeatCount = 1;     ///< passes of a batch run

    std::string ConfigFilePath;            ///< of COM.CFG
    std::string MapFilePath = "admin.map"; ///< of the map that is kept when the program ends
    std::string DecimalSeparator = ".";    ///< of the user's locale, UTF-8
    std::string LineEnd = "\n";            ///< of COM.CFG and map files, as other programs here expect it
    FileReplacer ReplaceFile;              ///< how files are saved
    FileOpener OpenFile;                   ///< how logs, recordings and journals are opened

    LineTags Tags; ///< of the line file that is open

    std::string UserName; ///< who uses the program, UTF-8; empty when it is not known
    bool Ending = false;  ///< the system has asked the program to end: nobody can be asked any more

    kavro::Preferences Preferences;
    /// Keeps `Preferences` for the next start. Throws `RuntimeFailure` when they cannot be saved.
    std::function<void(const kavro::Preferences& preferences)> SavePreferences =
        [](const kavro::Preferences&) {};

private:
    static std::array<std::int64_t, kavro::ModuleTable::Size> NeverBelieved() {
        std::array<std::int64_t, kavro::ModuleTable::Size> never{};
        never.fill(-1);
        return never;
    }
};

} // namespace kavro
