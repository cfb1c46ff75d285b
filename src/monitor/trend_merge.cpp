#include "monitor/trend_merge.h"

#include "link/text.h"
#include "link/wall_time.h"
#include "monitor/trend_series.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>

namespace kavro {

namespace {

constexpr std::int64_t ShortestPauseMs = 600'000;
constexpr std::int64_t PauseOverUsual = 10;

std::string NumberText(double value) {
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

} // namespace

std::vector<TrendColumn> MergeColumns(const std::vector<TrendColumn>& memory, const KeptStretch& kept) {
    std::vector<TrendColumn> columns;
    for (TrendColumn column : memory)
        if (column.FirstMs < kept.FromMs) {
            column.LastMs = std::min(column.LastMs, kept.FromMs - 1);
            columns.push_back(column);
        }
    for (const TrendColumn& column : kept.Columns)
        if (column.FirstMs < kept.ToMs)
            AppendColumn(columns, column);
    for (TrendColumn column : memory)
        if (column.LastMs >= kept.ToMs) {
            column.FirstMs = std::max(column.FirstMs, kept.ToMs);
            AppendColumn(columns, column);
        }
    return columns;
}

void BreakAtPauses(std::vector<TrendColumn>& columns) {
    std::int64_t usual = 0; // distance of readings, or more
    for (std::size_t place = 0; place + 1 < columns.size(); ++place) {
        TrendColumn& column = columns[place];
        if (column.LastMs > column.FirstMs)
            usual =
                usual == 0 ? column.LastMs - column.FirstMs : std::min(usual, column.LastMs - column.FirstMs);
        const std::int64_t distance = columns[place + 1].FirstMs - column.LastMs;
        if (usual > 0 && distance > std::max(ShortestPauseMs, PauseOverUsual * usual))
            column.Broken = true;
        else
            usual = distance;
    }
}

std::string TrendCsv(const std::vector<TrendCurve>& curves) {
    std::string text = "time";
    std::map<std::int64_t, std::vector<std::string>> rows;
    for (std::size_t number = 0; number < curves.size(); ++number) {
        const auto& [name, unit, columns] = curves[number];
        for (const char* which : {" least", " most"})
            text += "," + CsvField(name + which + (unit.empty() ? "" : " [" + unit + "]"));
        for (const TrendColumn& column : columns) {
            auto& cells = rows.try_emplace(column.AtMs, curves.size(), ",").first->second;
            cells[number] = NumberText(column.Least) + "," + NumberText(column.Most);
        }
    }
    text += "\n";
    for (const auto& [at, cells] : rows) {
        text += IsoTime(LocalMoment(at));
        for (const std::string& cell : cells)
            text += "," + cell;
        text += "\n";
    }
    return text;
}

} // namespace kavro
