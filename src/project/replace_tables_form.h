#pragma once

#include "project/line_comparison.h"

#include <QTableWidget>

#include <optional>
#include <vector>

namespace kavro {

/// The modules of a line file, one of which is chosen.
class SavedModuleTable : public QTableWidget {
public:
    SavedModuleTable();

    void ShowModules(const std::vector<SavedModule>& modules);
    /// Says behind a module what is known of it.
    void ShowAnswer(int row, Presence answer);
    /// The row that is chosen; nothing when none is.
    std::optional<std::size_t> Chosen() const;
};

/// Settings that a module has and those of the file.
class DifferenceTable : public QTableWidget {
public:
    DifferenceTable();

    void ShowDifferences(const std::vector<LineDifference>& differences);
};

} // namespace kavro
