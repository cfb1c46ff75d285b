#include "traffic/line_check_report.h"

#include "link/text.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr std::size_t Width = 100;
constexpr const char* Heading =
    "Address  Model     Sent  Complete  Silent  Damaged  Refused  Stray    Least   Median     95 %     Most";
constexpr std::size_t CountWidth = 9;

std::string ModuleLine(const ModuleCheck& module) {
    std::string line = PadLeft(std::to_string(module.Address), 7) + "  " + FixedText(module.Model, 6);
    const std::pair<std::int64_t, std::size_t> counts[] = {{module.Sent, 8},    {module.Complete, 10},
                                                           {module.Silent, 8},  {module.Damaged, 9},
                                                           {module.Refused, 9}, {module.Stray, 7}};
    for (const auto& [count, width] : counts)
        line += PadLeft(std::to_string(count), width);
    const auto times = TimesOf(module);
    for (double ReplyMs::*time : {&ReplyMs::Min, &ReplyMs::Median, &ReplyMs::P95, &ReplyMs::Max})
        line += PadLeft(times ? MsText((*times).*time) : "-", CountWidth);
    return line;
}

void AddWrapped(std::vector<std::string>& lines, std::string text) {
    while (text.size() > Width) {
        const std::size_t blank = text.rfind(' ', Width);
        const std::size_t end = blank == std::string::npos || blank == 0 ? Width : blank;
        lines.push_back(text.substr(0, end));
        text = "  " + Trim(text.substr(end));
    }
    lines.push_back(std::move(text));
}

} // namespace

const char* NoFindingsText(const LineCheckResult& result) {
    const bool asked =
        std::ranges::any_of(result.Modules, [](const ModuleCheck& module) { return module.Sent > 0; });
    return asked ? "Nothing is wrong." : "No module was asked.";
}

std::string MsText(double milliseconds) {
    return FormatNumber(milliseconds, 1, 1);
}

std::string WhoseText(const LineFinding& finding) {
    return finding.Address ? "address " + std::to_string(*finding.Address) : "line";
}

std::string FindingText(const LineFinding& finding) {
    return finding.Finding + ", " + WhoseText(finding) + ": " + finding.Text;
}

std::string LineText(const LineCheckResult& result) {
    return std::string("Line: echo ") + (result.Echo ? "yes" : "no") + ", " + std::to_string(result.Foreign) +
           " characters while no module was asked, load " +
           std::to_string(static_cast<int>(std::lround(100 * result.Load))) + " %.";
}

std::string UnfinishedText(const LineCheckResult& result) {
    if (result.PassesMade >= result.Passes)
        return {};
    return (result.Busy ? "Ended, as the line did not fall silent, after " : "Stopped after ") +
           std::to_string(result.PassesMade) + " of " + std::to_string(result.Passes) + " passes.";
}

std::vector<std::string> ReportLines(const LineCheckResult& result,
                                     const std::vector<LineFinding>& findings) {
    std::vector<std::string> lines = {Heading};
    for (const ModuleCheck& module : result.Modules)
        lines.push_back(ModuleLine(module));
    lines.emplace_back("Reply times in milliseconds, to the last character.");
    lines.emplace_back();
    lines.push_back(LineText(result));
    if (const std::string unfinished = UnfinishedText(result); !unfinished.empty())
        lines.push_back(unfinished);
    lines.emplace_back();
    for (const LineFinding& finding : findings)
        AddWrapped(lines, FindingText(finding));
    if (findings.empty())
        lines.emplace_back(NoFindingsText(result));
    return lines;
}

} // namespace kavro
