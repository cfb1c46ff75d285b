#pragma once

#include <compare>
#include <cstddef>
#include <optional>
#include <vector>

namespace kavro {

/// Where a value stands: the entry of its module in the map, and its number among the values of the module.
struct ValuePlace {
    int Index = 0;
    int Place = 0;

    auto operator<=>(const ValuePlace&) const = default;
};

/// Lays out the values of modules in rows of a fixed number of columns. A module has as many rows as its
/// values need, one at least.
class GridRows {
public:
    struct Module {
        int Index = 0;  ///< of its entry
        int Values = 0; ///< how many it has
    };

    struct Row {
        int Index = 0; ///< of the entry
        int First = 0; ///< number of the value in the first column; 0 in the first row of a module
        int Order = 0; ///< of the module among those in the grid
    };

    GridRows() = default;

    /// `columns`: 1 and up.
    GridRows(std::vector<Module> modules, int columns);

    int Count() const { return static_cast<int>(rows_.size()); }
    int Columns() const { return columns_; }
    const Row& At(int row) const { return rows_.at(static_cast<std::size_t>(row)); }

    /// The first row of entry `index`; nothing when the grid does not have it.
    std::optional<int> FirstRowOf(int index) const;

    /// The value in a column of a row; nothing behind the last value of a module.
    std::optional<ValuePlace> ValueAt(int row, int column) const;

    /// The value that comes `steps` after `from` (before it, when negative), round and round.
    std::optional<ValuePlace> Next(const ValuePlace& from, int steps) const;

    /// The number of values of the modules that have most of them.
    int MostValues() const;

    int ModuleCount() const { return static_cast<int>(modules_.size()); }
    const std::vector<Module>& Modules() const { return modules_; }

private:
    std::vector<Module> modules_;
    std::vector<Row> rows_;
    int columns_ = 1;
};

} // namespace kavro
