#pragma once

#include "project/line_comparison.h"

#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// A module and what it is to have.
struct WriteTarget {
    SavedModule Wanted; ///< every setting that it is to have; those that it lacks stay as they are
    Contact Way;        ///< in which it answers
};

/// What became of it.
struct WrittenModule {
    SavedModule Wanted;
    bool Sent = false;                      ///< something was sent that changes it
    std::vector<LineDifference> NotTaken{}; ///< what it has otherwise than wanted
    std::vector<std::string> Told{};        ///< what was told of it, sentences
    ModuleRecord Entry{};                   ///< as it was identified last
    bool Readable = false;                  ///< it told everything in the end

    bool AsWanted() const { return Readable && NotTaken.empty(); }
};

/// Called around what changes a module.
using WriteAround = std::function<void(int address, const std::function<void()>& write)>;

/// Writes what a module has otherwise than wanted as its configuration dialog does, reads it back, and writes
/// again what it has lost by that. What can be changed only in the initialisation state is left out unless
/// the module is spoken to at address 00; there its address is changed, too. A module of another model is
/// left alone. Throws `RuntimeFailure` when the port fails, and what `around` throws.
WrittenModule WriteModule(const LineWork& work, const WriteTarget& target, const WriteAround& around);

} // namespace kavro
