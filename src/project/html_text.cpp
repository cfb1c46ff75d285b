#include "project/html_text.h"

#include <utility>

namespace kavro {

namespace {

// Attributes where Qt's rich text knows no style; both print as thin lines.
constexpr const char* TableBegin =
    "<table width=\"100%\" border=\"1\" cellspacing=\"0\" cellpadding=\"4\">\n";

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

std::string Row(const char* cell, const std::vector<std::string>& texts) {
    std::string row = "<tr>";
    for (const std::string& text : texts)
        row += std::string("<") + cell + " align=\"left\">" + HtmlText(text) + "</" + cell + ">";
    return row + "</tr>\n";
}

} // namespace

std::string HtmlText(std::string_view text) {
    std::string html;
    for (const char character : text)
        html += Escaped(character);
    return html;
}

std::string HtmlTable(const std::vector<std::string>& heading,
                      const std::vector<std::vector<std::string>>& rows) {
    std::string html = TableBegin + ("<thead>" + Row("th", heading)) + "</thead>\n<tbody>\n";
    for (const std::vector<std::string>& row : rows)
        html += Row("td", row);
    return html + "</tbody></table>\n";
}

std::string HtmlFacts(const std::vector<std::pair<std::string, std::string>>& facts) {
    std::string html = TableBegin;
    for (const auto& [name, text] : facts)
        html += "<tr><th width=\"30%\" align=\"left\">" + HtmlText(name) + "</th><td>" + HtmlText(text) +
                "</td></tr>\n";
    return html + "</table>\n";
}

} // namespace kavro
