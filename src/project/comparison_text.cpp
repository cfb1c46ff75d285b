#include "project/comparison_text.h"

#include "config/config_names.h"
#include "map/module_access.h"
#include "project/line_file.h"

#include <algorithm>

namespace kavro {

namespace {

ComparisonRow RowOf(const SavedModule& module, const char* what) {
    return {module.Tags.Tag, module.Model, ShownAddress(module.Address), what, {}, {}};
}

std::string FileValue(const SavedModule& module, const std::string& name) {
    const SettingValue* const value = SettingIn(module, name);
    return value ? ValueText(*value) : "";
}

void AddRows(std::vector<ComparisonRow>& rows, const ModuleComparison& module) {
    ComparisonRow row = RowOf(module.File, "missing");
    if (module.Line.Is == Presence::Silent) {
        rows.push_back(row);
    } else if (module.Line.Is == Presence::Unclear) {
        row.What = "not understood";
        row.Line = module.Line.Trouble;
        rows.push_back(row);
    } else if (module.OtherModel()) {
        row.What = "other model";
        row.File = module.File.Model;
        row.Line = module.Line.Module.Model;
        rows.push_back(row);
    }
    for (const LineDifference& each : module.Differences)
        rows.push_back({row.Tag, row.Model, row.Address, each.Setting, each.File.Text, each.Line.Text});
    for (const std::string& name : module.Untold)
        rows.push_back({row.Tag, row.Model, row.Address, name, FileValue(module.File, name), "not told"});
}

} // namespace

std::vector<ComparisonRow> RowsOf(const LineComparison& comparison) {
    std::vector<ComparisonRow> rows;
    for (const ModuleComparison& module : comparison.Modules)
        AddRows(rows, module);
    for (const SavedModule& module : comparison.New)
        rows.push_back(RowOf(module, "new"));
    return rows;
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string SummaryText(const LineComparison& comparison, const std::string& where) {
    const std::string all = Counted(comparison.Modules.size(), "module");
    if (comparison.Same())
        return "No difference: " + all + (comparison.Modules.size() == 1 ? " is" : " are") +
               " as in the file.";
    const auto count = [&](auto is) {
        return static_cast<std::size_t>(std::ranges::count_if(comparison.Modules, is));
    };
    const auto isOf = [&](Presence presence) {
        return count([presence](const ModuleComparison& each) { return each.Line.Is == presence; });
    };
    const std::size_t different = count([](const ModuleComparison& each) {
        return each.Line.Is == Presence::Answers && !each.OtherModel() && !each.Same();
    });
    std::string text = "Of " + all + " " + where + " " + std::to_string(different) +
                       (different == 1 ? " differs" : " differ");
    const std::pair<std::size_t, const char*> others[] = {
        {isOf(Presence::Silent), "missing"},
        {isOf(Presence::Unclear), "not understood"},
        {count(&ModuleComparison::OtherModel), "of another model"}};
    for (const auto& [number, word] : others)
        if (number > 0)
            text += ", " + std::to_string(number) + (number == 1 ? " is " : " are ") + word;
    if (!comparison.New.empty())
        text += "; " + Counted(comparison.New.size(), "module") + " of the list " +
                (comparison.New.size() == 1 ? "is" : "are") + " new";
    return text + ".";
}

} // namespace kavro
