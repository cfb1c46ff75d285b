#pragma once

#include "project/line_file.h"
#include "project/line_work.h"

#include <string>
#include <vector>

namespace kavro {

/// Whether a module is there.
enum class Presence {
    Silent,
    Unclear, ///< something answers that cannot be believed, or tells its settings differently each time
    Answers,
};

/// What a module tells of itself.
struct ModuleReading {
    Presence Is = Presence::Silent;
    SavedModule Module{};              ///< of one that answers; without tags
    std::vector<std::string> Untold{}; ///< names of the settings that it did not tell; "firmware" too
    Contact Way{};                     ///< in which it answered
    bool Writable = true;              ///< it has a configuration
    std::string Trouble{};             ///< of one that does not answer well: a sentence
};

/// What a module has told of its settings; without firmware and tags.
SavedModule SavedModuleOf(const ModuleRecord& record, const NamedConfig& config);

/// Reads the module at a contact, which becomes the only and selected entry of the session: everything as it
/// tells it twice alike. Throws `RuntimeFailure` when the port fails.
ModuleReading ReadModuleAt(Session& session, const Contact& contact, const ProgramWords& words);

/// The contact to entry `index` of the list: as the list has it, then with the other checksum setting.
Contact ContactOfEntry(const Session& session, int index);

} // namespace kavro
