#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A UTF-8 text as HTML: its lines as lines, and nothing in it taken for markup.
std::string HtmlText(std::string_view text);

/// A table with a heading, which is repeated on each page that it reaches. Texts of rows and heading are
/// plain.
std::string HtmlTable(const std::vector<std::string>& heading,
                      const std::vector<std::vector<std::string>>& rows);

/// A table of names and what they are, without a heading.
std::string HtmlFacts(const std::vector<std::pair<std::string, std::string>>& facts);

} // namespace kavro
