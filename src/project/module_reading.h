#pragma once

#include "map/module_contact.h"
#include "map/session.h"
#include "project/line_file.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// Work on all modules of a line: where it is done and told. What the session's list is to be afterwards is
/// kept by who starts it (`KeptList`).
struct LineWork {
    kavro::Session& Session;
    Teller Tell;
    /// Told before each module: how many are done of how many.
    std::function<void(const std::string& doing, int done, int total)> Progress = [](const std::string&, int,
                                                                                     int) {};
};

/// A line's `BeforeCommand`, as long as it lives.
class BeforeEachCommand {
public:
    BeforeEachCommand(Line& line, decltype(Line::BeforeCommand) call)
        : line_(line), before_(std::exchange(line.BeforeCommand, std::move(call))) {}
    ~BeforeEachCommand() { line_.BeforeCommand = std::move(before_); }
    BeforeEachCommand(const BeforeEachCommand&) = delete;
    BeforeEachCommand& operator=(const BeforeEachCommand&) = delete;

private:
    Line& line_;
    decltype(Line::BeforeCommand) before_;
};

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
