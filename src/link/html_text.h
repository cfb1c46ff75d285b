#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kavro {

/// A UTF-8 text as HTML: its lines as lines, and nothing in it taken for markup.
std::string HtmlText(std::string_view text);

/// The style that every document has: black on white, with letters of that size, and of `cellPoints` in
/// tables.
std::string HtmlStyle(int points, int cellPoints);

/// A column of a table.
struct HtmlColumn {
    std::string Name;
    int Percent = 0; ///< of the table's width; 0: as its content needs
};

/// A table of plain texts with a heading, which is repeated on each page that it reaches.
std::string HtmlTable(const std::vector<HtmlColumn>& columns,
                      const std::vector<std::vector<std::string>>& rows);

/// A table of names and what they are, without a heading.
std::string HtmlFacts(const std::vector<std::pair<std::string, std::string>>& facts);

} // namespace kavro
