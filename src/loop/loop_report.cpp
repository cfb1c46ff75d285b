#include "loop/loop_report.h"

#include "link/html_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "loop/loop_words.h"
#include "map/module_access.h"
#include "map/product.h"

#include <algorithm>
#include <set>

namespace kavro {

namespace {

constexpr const char* NotDone = "not done";

constexpr const char* Style =
    "body { font-family: sans-serif; font-size: 10pt; color: #000000; background-color: #ffffff; }\n"
    "h1 { font-size: 16pt; margin-bottom: 12px; }\n"
    "h1.title { font-size: 24pt; }\n"
    "table { border-collapse: collapse; border-color: #808080; }\n"
    "th { background-color: #e6e6e6; }\n"
    "td, th { font-size: 8pt; vertical-align: top; }\n";

std::string Joined(const std::vector<std::string>& texts, const char* between) {
    std::string joined;
    for (const std::string& text : texts)
        joined += (joined.empty() ? "" : between) + text;
    return joined;
}

std::string People(const LoopRecord& record) {
    std::set<std::string> people;
    for (const LoopEntry& entry : record.Entries)
        if (entry.Result && !entry.Result->Person.empty())
            people.insert(entry.Result->Person);
    return Listed({people.begin(), people.end()});
}

std::string Ended(const LoopRecord& record) {
    std::string last;
    for (const LoopEntry& entry : record.Entries)
        if (entry.Result)
            last = std::max(last, entry.Result->Time);
    return ShownTime(last);
}

std::string Facts(const LoopRecord& record, const std::string& linePath) {
    std::vector<std::pair<std::string, std::string>> facts = {
        {"Line", record.Line},
        {"Line file", linePath},
        {"Begun", ShownTime(record.Began)},
        {"Last result", Ended(record)},
        {"Person", People(record)},
        {"Program", std::string(ApplicationTitle) + ", version " + ProductVersion},
        {"Channels", LoopSummary(record)},
        {"Not put back yet", Listed(StandingTexts(record))}};
    std::erase_if(facts, [](const auto& fact) { return fact.second.empty(); });
    return HtmlFacts(facts);
}

} // namespace

LoopReportKind LoopReportKindOf(const std::string& path) {
    const auto endsWith = [&](std::string_view suffix) {
        return path.size() > suffix.size() &&
               SameText(std::string_view(path).substr(path.size() - suffix.size()), suffix);
    };
    if (endsWith(".pdf"))
        return LoopReportKind::Pdf;
    if (endsWith(".csv"))
        return LoopReportKind::Csv;
    throw RuntimeFailure("The report '" + path + "' must end in .pdf or .csv.");
}

std::string LoopSummary(const LoopRecord& record) {
    std::string text =
        std::to_string(DoneCount(record)) + " of " + std::to_string(record.Entries.size()) + " done";
    const char* before = ": ";
    for (const LoopOutcome outcome : {LoopOutcome::Pass, LoopOutcome::Fail, LoopOutcome::Skip})
        if (const int count = CountOf(record, outcome); count > 0) {
            text += before + std::to_string(count) + " " + LoopOutcomeText(outcome);
            before = ", ";
        }
    return text + ".";
}

std::string LoopCsv(const LoopRecord& record) {
    std::string text = "time,tag,address,model,channel,kind,values,result,note,person\r\n";
    for (const auto& [point, note, result] : record.Entries) {
        const LoopResult none{};
        const LoopResult& known = result ? *result : none;
        const std::vector<std::string> fields = {known.Time,
                                                 point.Tag,
                                                 std::to_string(point.Address),
                                                 point.Model,
                                                 ChannelText(point),
                                                 LoopKindText(point.Kind),
                                                 Joined(known.Values, "; "),
                                                 result ? LoopOutcomeText(known.Outcome) : "",
                                                 note,
                                                 known.Person};
        std::string row;
        for (std::size_t i = 0; i < fields.size(); ++i)
            row += (i == 0 ? "" : ",") + CsvField(fields[i]);
        text += row + "\r\n";
    }
    return text;
}

std::string LoopHtml(const LoopRecord& record, const std::string& linePath) {
    std::vector<std::vector<std::string>> rows;
    for (const auto& [point, note, result] : record.Entries)
        rows.push_back({point.Tag, PlaceText(point), LoopKindText(point.Kind),
                        result ? Joined(result->Values, ", ") : "",
                        result ? LoopOutcomeText(result->Outcome) : NotDone, note,
                        result ? ShownTime(result->Time) : "", result ? result->Person : ""});
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
           HtmlText(record.Line) + ": loop check</title>\n<style>\n" + Style +
           "</style>\n</head>\n<body>\n<h1 class=\"title\">Loop check</h1>\n" + Facts(record, linePath) +
           "<h1>Channels</h1>\n" +
           HtmlTable({{"Tag", 12},
                      {"Module and channel", 19},
                      {"Kind", 8},
                      {"Values", 18},
                      {"Result", 8},
                      {"Note", 13},
                      {"Time", 13},
                      {"Person", 9}},
                     rows) +
           "</body>\n</html>\n";
}

} // namespace kavro
