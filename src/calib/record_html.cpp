#include "calib/record_html.h"

#include "calib/calibration_reading.h"
#include "link/html_text.h"
#include "link/number_text.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/module_access.h"
#include "map/product.h"

#include <algorithm>

namespace kavro {

namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr const char* NotGiven = "not given";
constexpr const char* Missing = "-";
constexpr int PercentDecimals = 3, MostDecimals = 6;

std::string Style(int points) {
    const auto size = [](int value) { return "font-size: " + std::to_string(value) + "pt; "; };
    return HtmlStyle(points, points - 1) + "h1 { " + size(points + 8) + "margin-bottom: 8px; }\np.result { " +
           size(points + 4) + "font-weight: bold; }\np.aborted { font-weight: bold; }\n";
}

// Ends of lines count as long lines do: they need room, too.
std::string Shortened(const std::string& text, std::size_t characters) {
    constexpr std::size_t LineCharacters = 40;
    std::size_t lines = 0, end = 0;
    while (end < text.size() && lines <= characters / LineCharacters)
        lines += text[end++] == '\n' ? 1 : 0;
    const std::string start = FirstCharacters(text.substr(0, end), characters);
    return start.size() == text.size() ? text : start + "... (the JSON file has the rest)";
}

std::string Given(const std::string& text, std::size_t characters) {
    return text.empty() ? NotGiven : Shortened(text, characters);
}

// The date is compared as text: year, month and day stand in this order.
std::string DueText(const CalibrationRecord& record) {
    const std::string& due = record.Entries.InstrumentDue;
    const bool past = !due.empty() && due < record.Ended.substr(0, due.size());
    return due.empty() ? NotGiven : due + (past ? ": past when this calibration was made" : "");
}

std::string ToleranceText(const CalibrationRecord& record) {
    const double percent = record.Entries.TolerancePercent;
    std::string text = ShortestText(percent) + " % of full scale";
    if (record.FullScale <= 0)
        return text;
    return text + " (" + ShortestText(record.FullScale) + " " + record.Unit + ")";
}

std::string FactsTable(const CalibrationRecord& record, std::size_t characters) {
    const CalibrationEntries& entries = record.Entries;
    std::vector<std::pair<std::string, std::string>> facts = {
        {"Tag", Shortened(record.Tag, characters)},
        {"Module", record.Model + " at address " + ShownAddress(record.Address)},
        {"Firmware", record.Firmware},
        {"Range", Shortened(record.Range, characters)},
        {"Tolerance", ToleranceText(record)},
        {"Started", ShownUtc(record.Started)},
        {"Ended", ShownUtc(record.Ended)},
        {"Operator", Given(entries.Operator, characters)},
        {"Reference instrument", Given(entries.Instrument, characters)},
        {"Instrument due", DueText(record)},
        {"Ambient temperature", entries.Ambient.empty() ? NotGiven : entries.Ambient + " \u00b0C"},
        {"Note", Shortened(entries.Note, characters)},
        {"Left as", record.Aborted ? "" : Shortened(record.LeftAs, characters)},
        {"Program", std::string(ApplicationTitle) + ", version " + ProductVersion}};
    std::erase_if(facts, [](const auto& fact) { return fact.second.empty(); });
    return HtmlFacts(facts);
}

std::size_t DecimalsOf(double value) {
    const std::string text = ShortestText(value);
    const auto point = text.find('.');
    return point == std::string::npos ? 0 : text.size() - point - 1;
}

// All numbers of a point have the digits of what measured it or of its signal; where that is not known, those
// of the finest.
int DecimalsOf(const CalibrationPoint& point) {
    std::size_t decimals = DecimalsOf(point.Signal);
    if (point.Step > 0)
        return std::max(static_cast<int>(decimals), DecimalsOfStep(point.Step));
    for (const auto& measured : {point.AsFound, point.AsLeft})
        if (measured)
            decimals = std::max(decimals, DecimalsOf(*measured));
    return std::min(static_cast<int>(decimals), MostDecimals);
}

std::string Shown(const std::optional<double>& number, int decimals) {
    return number ? FormatNumber(*number, 1, decimals) : Missing;
}

std::vector<std::string> PointRow(const CalibrationRecord& record, const CalibrationPoint& point,
                                  std::size_t characters) {
    const int decimals = DecimalsOf(point);
    std::vector<std::string> row = {Shortened(point.What, characters), point.Source,
                                    Shown(point.Signal, decimals) + " " + point.Unit};
    for (const auto& measured : {point.AsFound, point.AsLeft}) {
        const auto error = ErrorOf(point, measured);
        row.push_back(Shown(measured, decimals));
        row.push_back(Shown(error, decimals));
        row.push_back(Shown(PercentOfFullScale(record, point, error), PercentDecimals));
    }
    row.emplace_back(!point.Stored ? "not known" : *point.Stored ? "yes" : "no");
    row.push_back(ShownResult(ResultOf(record, point)));
    return row;
}

std::string PointsTable(const CalibrationRecord& record, const RecordFit& fit) {
    if (record.Points.empty())
        return "<p>Nothing was measured.</p>\n";
    const std::size_t shown = std::min(record.Points.size(), fit.Points);
    Rows rows;
    for (std::size_t i = 0; i < shown; ++i)
        rows.push_back(PointRow(record, record.Points[i], fit.Characters));
    std::string html = HtmlTable({{"Point", 10},
                                  {"Read by", 9},
                                  {"Signal", 9},
                                  {"As found", 10},
                                  {"Error", 9},
                                  {"% of full scale", 8},
                                  {"As left", 10},
                                  {"Error", 9},
                                  {"% of full scale", 8},
                                  {"Stored", 9},
                                  {"Result", 9}},
                                 rows);
    if (shown < record.Points.size())
        html += "<p>... and " + std::to_string(record.Points.size() - shown) +
                " more, which the JSON file has.</p>\n";
    return html;
}

} // namespace

std::string RecordHtml(const CalibrationRecord& record, const RecordFit& fit) {
    const std::string name = record.Tag.empty() ? record.Model : record.Tag;
    std::string html = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>" +
                       HtmlText(name) + ": calibration record</title>\n<style>\n" + Style(fit.FontPoints) +
                       "</style>\n</head>\n<body>\n<h1>Calibration record</h1>\n";
    if (record.Aborted)
        html += "<p class=\"aborted\">Aborted: this calibration was left before it was complete. " +
                HtmlText(Shortened(record.LeftAs, fit.Characters)) + "</p>\n";
    html += "<p class=\"result\">Result: " + ShownResult(ResultOf(record)) + "</p>\n";
    return html + FactsTable(record, fit.Characters) + "<p></p>\n" + PointsTable(record, fit) +
           "<p></p>\n<p>Date and signature: ________________________________</p>\n</body>\n</html>\n";
}

} // namespace kavro
