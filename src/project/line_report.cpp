#include "project/line_report.h"

#include "config/setting_words.h"
#include "link/html_text.h"
#include "link/json_reader.h"
#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/module_access.h"
#include "map/product.h"
#include "project/backup.h"
#include "project/comparison_text.h"
#include "project/saved_config.h"

#include <algorithm>

namespace kavro {

namespace {

using Row = std::vector<std::string>;

constexpr const char* NotTold = "not told";

// Qt's rich text does not know the rule that keeps a module together; who prints it by Qt does so itself.
constexpr const char* Style = "h1 { font-size: 16pt; margin-bottom: 12px; page-break-before: always; }\n"
                              "h1.title { font-size: 24pt; page-break-before: auto; }\n"
                              "h2 { font-size: 12pt; margin-bottom: 8px; }\n"
                              ".module { page-break-inside: avoid; }\n";

std::string NameOf(const LineFile& file, const ReportFacts& facts) {
    return file.Name.empty() ? NameFromPath(facts.Path) : file.Name;
}

std::string CheckSummary(const std::optional<SavedCheck>& check) {
    if (!check)
        return "not made";
    return check->Findings.empty() ? "nothing is wrong" : Counted(check->Findings.size(), "finding");
}

std::string TitlePage(const LineFile& file, const std::optional<SavedCheck>& check,
                      const ReportFacts& facts) {
    std::vector<std::pair<std::string, std::string>> rows = {
        {"Line", NameOf(file, facts)},
        {"Port", facts.Port},
        {"Date", facts.Date},
        {"Person", facts.Person},
        {"Program", std::string(ApplicationTitle) + ", version " + ProductVersion},
        {"Line file", facts.Path},
        {"Settings read", ShownUtc(file.Time)},
        {"Modules", std::to_string(file.Modules.size())},
        {"Line check", CheckSummary(check)}};
    std::erase_if(rows, [](const auto& row) { return row.second.empty(); });
    return "<h1 class=\"title\">Commissioning report</h1>\n" + HtmlFacts(rows);
}

// A setting of a module as the table of modules has it.
std::string Told(const SavedModule& module, std::string_view name) {
    const SettingValue* const value = SettingIn(module, name);
    return value ? ValueText(*value) : NotTold;
}

std::string ModulesChapter(const LineFile& file) {
    std::vector<Row> rows;
    for (const SavedModule& module : file.Modules)
        rows.push_back({module.Tags.Tag, module.Model, module.Firmware.empty() ? NotTold : module.Firmware,
                        ShownAddress(module.Address), Told(module, "baud"), Told(module, "checksum")});
    return "<h1>Modules</h1>\n" +
           HtmlTable({{"Tag", 30}, {"Model"}, {"Firmware"}, {"Address"}, {"Baud rate"}, {"Checksum"}}, rows);
}

std::vector<Row> SettingRows(const SavedModule& module) {
    NamedConfig config = ConfigOf(module);
    for (NamedSetting& setting : config.Settings)
        setting.Told = SettingIn(module, setting.Name) != nullptr;
    std::vector<Row> rows;
    for (const NamedSetting& setting : config.Settings) {
        if (setting.When == Writable::Never || setting.Name == "address") // they stand in the heading
            continue;
        const SettingValue* const saved = SettingIn(module, setting.Name);
        const bool given = saved && setting.Value() == *saved;
        rows.push_back({SettingInWords(setting.Name, module.Model),
                        given ? ValueInWords(config, setting) : Told(module, setting.Name)});
    }
    return rows;
}

std::string ChannelTable(const SavedModule& module) {
    std::vector<Row> rows;
    for (const auto& [number, channel] : module.Channels)
        if (channel.Tags != TagAndNote{})
            rows.push_back({std::to_string(number), channel.Tags.Tag, channel.Tags.Note});
    return rows.empty() ? std::string()
                        : "<p></p>\n" + HtmlTable({{"Channel", 15}, {"Tag", 35}, {"Note", 50}}, rows);
}

// A member of a record as it stands; records of newer versions may have others.
std::string RecordText(const JsonNode& record, std::string_view name) {
    const JsonNode* const member = record.Member(name);
    return member && member->Is == JsonNode::Kind::Text ? member->Text : NotTold;
}

std::string HistoryTable(const SavedModule& module) {
    std::vector<Row> rows;
    for (const std::string& json : module.History) {
        const JsonNode record = ReadJson(json);
        rows.push_back({ShownUtc(RecordText(record, "ended")), RecordText(record, "operator"),
                        RecordText(record, "result")});
    }
    return rows.empty()
               ? std::string()
               : "<p></p>\n" + HtmlTable({{"Calibrated", 35}, {"Operator", 40}, {"Result", 25}}, rows);
}

std::string ModuleBlock(const SavedModule& module) {
    std::string html = "<div class=\"module\">\n<h2>" + HtmlText(ShownModule(module)) + "</h2>\n";
    if (!module.Tags.Note.empty())
        html += "<p>" + HtmlText(module.Tags.Note) + "</p>\n";
    html += module.Settings.empty() ? std::string("<p>The module has told none of its settings.</p>\n")
                                    : HtmlTable({{"Setting", 50}, {"Value", 50}}, SettingRows(module));
    return html + ChannelTable(module) + HistoryTable(module) + "</div>\n";
}

std::string FindingsChapter(const LineFile& file, const SavedCheck& check) {
    const auto shown = [&](int address) {
        const SavedModule* const module = ModuleIn(file, address);
        return module ? ShownModule(*module) : "Address " + ShownAddress(static_cast<std::int16_t>(address));
    };
    std::vector<Row> findings, modules;
    for (const SavedFinding& each : check.Findings)
        findings.push_back({each.Address ? shown(*each.Address) : "The whole line", each.Finding, each.Text});
    const auto time = [](const std::optional<double>& ms) { return ms ? FormatNumber(*ms, 1, 1) : "-"; };
    for (const SavedModuleCheck& each : check.Modules)
        modules.push_back({ShownAddress(static_cast<std::int16_t>(each.Address)), each.Model,
                           std::to_string(each.Sent), std::to_string(each.Complete),
                           std::to_string(each.Silent), std::to_string(each.Damaged),
                           std::to_string(each.Refused), time(each.MedianMs), time(each.MostMs)});
    return "<h1>Line check</h1>\n" +
           (findings.empty()
                ? std::string("<p>Nothing is wrong.</p>\n")
                : HtmlTable({{"Where", 25}, {"Finding", 15}, {"What was seen, and what to do", 60}},
                            findings)) +
           "<h2>Replies of the modules</h2>\n" +
           HtmlTable({{"Address", 13},
                      {"Model", 9},
                      {"Sent", 8},
                      {"Complete", 13},
                      {"Silent", 10},
                      {"Damaged", 13},
                      {"Refused", 12},
                      {"Median ms", 11},
                      {"Most ms", 11}},
                     modules);
}

} // namespace

std::optional<ReportKind> ReportKindOf(const std::string& path) {
    const auto endsWith = [&](std::string_view suffix) {
        return path.size() > suffix.size() &&
               SameText(std::string_view(path).substr(path.size() - suffix.size()), suffix);
    };
    if (endsWith(".pdf"))
        return ReportKind::Pdf;
    return endsWith(".html") || endsWith(".htm") ? std::optional(ReportKind::Html) : std::nullopt;
}

std::string ReportHtml(const LineFile& file, const std::optional<SavedCheck>& check,
                       const ReportFacts& facts) {
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       HtmlText(NameOf(file, facts)) + ": commissioning report</title>\n<style>\n" +
                       HtmlStyle(10, 9) + Style + "</style>\n</head>\n<body>\n" +
                       TitlePage(file, check, facts) + ModulesChapter(file) + "<h1>Settings</h1>\n";
    for (const SavedModule& module : file.Modules)
        html += ModuleBlock(module);
    if (check)
        html += FindingsChapter(file, *check);
    return html + "</body>\n</html>\n";
}

std::string LoadReport(const ReportSource& source) {
    const LineFile file = LoadLineFile(source.Facts.Path);
    std::optional<SavedCheck> check;
    if (!source.CheckPath.empty())
        check = LoadCheck(source.CheckPath);
    return ReportHtml(file, check, source.Facts);
}

void RefuseOwnSource(const ReportSource& source, const std::string& path) {
    for (const std::string& own : {source.Facts.Path, source.CheckPath})
        if (!own.empty() && (own == path || SameFile(own, path)))
            throw RuntimeFailure("The report would replace the file \"" + own +
                                 "\" that it is made of. Give it another name.");
}

} // namespace kavro
