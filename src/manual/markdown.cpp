#include "manual/markdown.h"

#include "link/runtime_failure.h"

#include <QRegularExpression>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <vector>

namespace kavro {

namespace {

constexpr std::string_view Fence = "```";

bool IsHeading(const std::string& line) {
    return line.starts_with('#');
}

std::string HeadingText(const std::string& line) {
    return line.substr(std::min(line.find_first_not_of("# "), line.size()));
}

// Links and pictures become their words, which in a manual page is all that is left of them.
QString WithoutLinks(QString text) {
    static const QRegularExpression picture(R"(!\[[^\]]*\]\([^)]*\))");
    static const QRegularExpression link(R"(\[([^\]]*)\]\([^)]*\))");
    return text.remove(picture).replace(link, "\\1");
}

// Code and bold words in bold; the rest as it stands.
std::string Inline(const std::string& markdown) {
    const QString text = WithoutLinks(QString::fromStdString(markdown));
    static const QRegularExpression bold(R"(`([^`]*)`|\*\*([^*]*)\*\*)");
    std::string roff;
    qsizetype rest = 0;
    for (const QRegularExpressionMatch& found : bold.globalMatch(text)) {
        roff += RoffText(text.mid(rest, found.capturedStart() - rest).toStdString());
        roff += RoffBold((found.captured(1) + found.captured(2)).toStdString());
        rest = found.capturedEnd();
    }
    return roff + RoffText(text.mid(rest).toStdString());
}

std::vector<std::string> Cells(const std::string& row) {
    std::vector<std::string> cells(1);
    bool code = false;
    for (const char c : row.substr(1)) {
        code ^= c == '`';
        if (c == '|' && !code)
            cells.emplace_back();
        else
            cells.back() += c;
    }
    cells.pop_back(); // behind the last bar
    for (std::string& cell : cells) {
        cell.erase(0, cell.find_first_not_of(' '));
        cell.erase(cell.find_last_not_of(' ') + 1);
    }
    return cells;
}

/// Reads line by line; what a paragraph, a list entry or a table is shows at its end.
class Reader {
public:
    std::string Read(const std::string& markdown) {
        std::istringstream lines(markdown);
        for (std::string line; std::getline(lines, line);)
            Take(line);
        EndText();
        return roff_;
    }

private:
    void Take(const std::string& line) {
        if (line.starts_with(Fence)) {
            EndText();
            roff_ += code_ ? ".EE\n.RE\n" : ".PP\n.RS 4\n.EX\n";
            code_ = !code_;
        } else if (code_) {
            roff_ += RoffText(line) + "\n";
        } else if (line.starts_with('|')) {
            TakeRow(line);
        } else if (line.empty() || IsHeading(line)) {
            EndText();
            TakeHeading(line);
        } else if (line.starts_with("- ")) {
            EndText();
            begin_ = ".IP \\(bu 2\n";
            text_ = line.substr(2);
        } else {
            text_ += (text_.empty() ? "" : " ") + line.substr(line.find_first_not_of(' '));
        }
    }

    void TakeHeading(const std::string& line) {
        if (line.starts_with("### "))
            roff_ += ".SS " + RoffText(HeadingText(line)) + "\n";
        else if (line.starts_with("## "))
            roff_ += ".SH " + RoffHeading(HeadingText(line)) + "\n";
        // The first heading is the name of the page.
    }

    void TakeRow(const std::string& line) {
        EndText(false);
        const std::vector<std::string> cells = Cells(line);
        if (line.starts_with("|---"))
            return;
        if (columns_.empty()) {
            columns_ = cells;
            if (!cells.front().empty())
                roff_ += ".PP\n" + Inline(cells.front() + ":") + "\n";
            return;
        }
        std::string rest;
        for (std::size_t column = 1; column < cells.size(); ++column) {
            if (cells[column].empty())
                continue;
            const bool named = cells.size() > 2 && !columns_[column].empty();
            rest += (rest.empty() ? "" : "; ") + (named ? columns_[column] + ": " : "") + cells[column];
        }
        roff_ += ".TP\n" + Inline(cells.front()) + "\n" + Inline(rest) + "\n";
    }

    void EndText(bool table = true) {
        const std::string text = Inline(text_);
        if (!text.empty())
            roff_ += begin_ + text + "\n";
        text_.clear();
        begin_ = ".PP\n";
        if (table)
            columns_.clear();
    }

    std::string roff_;
    std::string begin_ = ".PP\n"; // of the text being read
    std::string text_;
    std::vector<std::string> columns_; // of the table being read
    bool code_ = false;
};

} // namespace

std::string MarkdownSection(const std::string& markdown, const std::string& heading) {
    std::istringstream lines(markdown);
    std::string section;
    bool inside = false, found = false, code = false;
    for (std::string line; std::getline(lines, line);) {
        code ^= line.starts_with(Fence);
        if (IsHeading(line) && !code) {
            inside = HeadingText(line) == heading;
            found = found || inside;
        } else if (inside) {
            section += line + "\n";
        }
    }
    if (!found)
        throw RuntimeFailure("There is no heading \"" + heading + "\". Name one that the document has.");
    return section;
}

std::string RoffOfMarkdown(const std::string& markdown) {
    return Reader().Read(markdown);
}

std::string RoffText(const std::string& text) {
    std::string roff;
    for (const char c : text)
        switch (c) {
        case '\\':
            roff += "\\e";
            break;
        case '-': // a hyphen that can be copied into a terminal
            roff += "\\-";
            break;
        case '\'':
            roff += "\\(aq";
            break;
        case '`':
            roff += "\\(ga";
            break;
        case '^':
            roff += "\\(ha";
            break;
        case '~':
            roff += "\\(ti";
            break;
        default:
            roff += c;
        }
    // A line that begins with a point would be a request.
    return roff.starts_with('.') ? "\\&" + roff : roff;
}

std::string RoffHeading(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
    return RoffText(text);
}

std::string RoffBold(const std::string& text) {
    return "\\fB" + RoffText(text) + "\\fR";
}

} // namespace kavro
