#pragma once

#include <string>

namespace kavro {

/// The text below the heading `heading`, of any level, up to the next heading. Throws `RuntimeFailure` when
/// there is none.
std::string MarkdownSection(const std::string& markdown, const std::string& heading);

/// Markdown as the documents use it (headings, paragraphs, lists, code, tables, bold, links) as the source of
/// a manual page. A table becomes a list of its first column, each with the other columns.
std::string RoffOfMarkdown(const std::string& markdown);

/// `text` as it stands, on a line of its own or within one, for a manual page.
std::string RoffText(const std::string& text);

/// The same in capitals, as headings are.
std::string RoffHeading(std::string text);

/// The same in bold, for what is typed.
std::string RoffBold(const std::string& text);

} // namespace kavro
