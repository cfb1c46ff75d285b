#pragma once

#include "config/setting_changes.h"
#include "project/module_reading.h"

#include <string>
#include <vector>

namespace kavro {

/// A setting that the file and the line have differently.
struct LineDifference {
    std::string Setting;
    ShownValue File, Line;
    Writable When = Writable::Always;
};

/// A module of the file beside what is on the line.
struct ModuleComparison {
    SavedModule File;
    ModuleReading Line;
    std::vector<LineDifference> Differences{};
    std::vector<std::string> Untold{}; ///< settings of the file that the module does not tell

    bool OtherModel() const { return Line.Is == Presence::Answers && Line.Module.Model != File.Model; }
    bool Same() const {
        return Line.Is == Presence::Answers && !OtherModel() && Differences.empty() && Untold.empty();
    }
};

/// A line file beside the line.
struct LineComparison {
    std::vector<ModuleComparison> Modules{}; ///< those of the file, in its order
    std::vector<SavedModule> New{};          ///< modules of the list that the file does not have

    bool Same() const;
    bool Answered() const; ///< any module did
};

/// Compares the modules of a line file, and those of the session's list, with the file. The session has
/// another list afterwards. Throws `RuntimeFailure` when the port fails.
LineComparison CompareLine(const LineWork& work, const LineFile& file);

/// A module of a file beside what was read.
ModuleComparison Compared(const SavedModule& file, const ModuleReading& line);

/// What differs between a module of a file and one that was read, both of one model.
std::vector<LineDifference> DifferencesBetween(const SavedModule& file, const SavedModule& line);

/// The same with the address in front, of a module that is to get it in its initialisation state.
std::vector<LineDifference> AllDifferences(const SavedModule& file, const SavedModule& line);

} // namespace kavro
