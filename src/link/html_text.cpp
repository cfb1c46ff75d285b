#include "link/html_text.h"

namespace kavro {

namespace {

// Attributes where Qt's rich text knows no style; both print as thin lines.
constexpr const char* TableBegin =
    "<table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"4\">\n";

constexpr int NamePercent = 30;

std::string Escaped(char character) {
    switch (character) {
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '"':
        return "&quot;";
    case '\n':
        return "<br>";
    default:
        const auto code = static_cast<unsigned char>(character);
        return {code < ' ' || code == 0x7F ? ' ' : character}; // other control characters are none in HTML
    }
}

std::string Cell(const std::string& tag, const std::string& text, int percent = 0) {
    const std::string width = percent > 0 ? " width=\"" + std::to_string(percent) + "%\"" : "";
    return "<" + tag + width + " align=\"left\">" + HtmlText(text) + "</" + tag + ">";
}

} // namespace

std::string HtmlText(std::string_view text) {
    std::string html;
    for (const char character : text)
        html += Escaped(character);
    return html;
}

// Attributes of the tables do not follow the size of the body in Qt's rich text.
std::string HtmlStyle(int points, int cellPoints) {
    return "body { font-family: sans-serif; font-size: " + std::to_string(points) +
           "pt; color: #000000; background-color: #ffffff; }\n"
           "table { border-collapse: collapse; border-color: #808080; }\n"
           "th { background-color: #e6e6e6; }\n"
           "td, th { font-size: " +
           std::to_string(cellPoints) + "pt; vertical-align: top; }\n";
}

std::string HtmlTable(const std::vector<HtmlColumn>& columns,
                      const std::vector<std::vector<std::string>>& rows) {
    std::string html = std::string(TableBegin) + "<thead><tr>";
    for (const auto& [name, percent] : columns)
        html += Cell("th", name, percent);
    html += "</tr></thead>\n<tbody>\n";
    for (const std::vector<std::string>& row : rows) {
        html += "<tr>";
        for (const std::string& text : row)
            html += Cell("td", text);
        html += "</tr>\n";
    }
    return html + "</tbody></table>\n";
}

std::string HtmlFacts(const std::vector<std::pair<std::string, std::string>>& facts) {
    std::string html = TableBegin;
    for (const auto& [name, text] : facts)
        html += "<tr>" + Cell("th", name, NamePercent) + Cell("td", text) + "</tr>\n";
    return html + "</table>\n";
}

} // namespace kavro
