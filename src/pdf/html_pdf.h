#pragma once

#include <optional>
#include <string>

namespace kavro {

/// An HTML document (UTF-8) as the bytes of a PDF file, on the paper of the user's country: with its title
/// and the number of the page in the foot, and the title in the file's properties. What stands between two
/// headings of level 2 is kept on one page where it fits on one. Needs a QGuiApplication. Throws
/// `RuntimeFailure` when the system has no fonts.
std::string PdfOfHtml(const std::string& html);

/// The same, when it is a single page; nothing when it has more.
std::optional<std::string> PdfPageOfHtml(const std::string& html);

} // namespace kavro
