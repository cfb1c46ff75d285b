#include "monitor/grid_rows.h"

#include <algorithm>
#include <utility>

namespace kavro {

GridRows::GridRows(std::vector<Module> modules, int columns)
    : modules_(std::move(modules)), columns_(std::max(columns, 1)) {
    int order = 0;
    for (const Module& module : modules_) {
        for (int first = 0; first == 0 || first < module.Values; first += columns_)
            rows_.push_back({module.Index, first, order});
        ++order;
    }
}

std::optional<int> GridRows::FirstRowOf(int index) const {
    const auto found = std::ranges::find(rows_, index, &Row::Index);
    return found == rows_.end() ? std::nullopt : std::optional(static_cast<int>(found - rows_.begin()));
}

std::optional<ValuePlace> GridRows::ValueAt(int row, int column) const {
    if (row < 0 || row >= Count() || column < 0 || column >= columns_)
        return std::nullopt;
    const Row& at = At(row);
    const int place = at.First + column;
    const Module& module = modules_[static_cast<std::size_t>(at.Order)];
    return place < module.Values ? std::optional(ValuePlace{at.Index, place}) : std::nullopt;
}

std::optional<ValuePlace> GridRows::Next(const ValuePlace& from, int steps) const {
    std::vector<ValuePlace> all;
    for (const Module& module : modules_)
        for (int place = 0; place < module.Values; ++place)
            all.push_back({module.Index, place});
    if (all.empty())
        return std::nullopt;
    const auto found = std::ranges::find(all, from);
    const auto count = static_cast<int>(all.size());
    const int at = found == all.end() ? 0 : static_cast<int>(found - all.begin()) + steps;
    return all[static_cast<std::size_t>((at % count + count) % count)];
}

int GridRows::MostValues() const {
    const auto most = std::ranges::max_element(modules_, {}, &Module::Values);
    return most == modules_.end() ? 0 : most->Values;
}

} // namespace kavro
