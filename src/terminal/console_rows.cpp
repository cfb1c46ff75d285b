#include "terminal/console_rows.h"

#include <limits>

namespace kavro {

namespace {

constexpr int RingRows = 12; // six pairs
constexpr int RowsPerPair = 2;
constexpr int MostRowsAppended = 13; // above that the console is redrawn
constexpr const char* Prompt = ">";

// The first text of a row, and how the texts of a row stand to the entry box's left edge and to the row.
constexpr int RowLeft = 90;
constexpr int RowTop = 30;
constexpr int PromptOffset = -90;
constexpr int CommandOffset = 45;
constexpr int ReplyOffset = -70;
constexpr int AppendedTop = 40;

// Subtracted before the count would leave 16 bits: whole rounds of the ring, and far enough from the end that
// it stays beyond the rows that are appended.
constexpr int CountWrap = 2729 * RingRows;
static_assert(std::numeric_limits<std::int16_t>::max() - 1 - CountWrap > MostRowsAppended);

} // namespace

ConsoleRows::ConsoleRows() {
    DrawPrompt();
}

void ConsoleRows::ShowTerminalLine(const std::string& command, const std::string& reply) {
    if (lineCount_ > std::numeric_limits<std::int16_t>::max() - RowsPerPair)
        lineCount_ = static_cast<std::int16_t>(lineCount_ - CountWrap);
    const auto slot = static_cast<std::size_t>(lineCount_ % RingRows);
    terminalLines_[slot] = Prompt + command;
    terminalLines_[slot + 1] = reply;
    lineCount_ = static_cast<std::int16_t>(lineCount_ + RowsPerPair);
    if (lineCount_ > MostRowsAppended)
        Redraw();
    else
        Append(command, reply);
    DrawPrompt();
}

void ConsoleRows::Append(const std::string& command, const std::string& reply) {
    drawn_.push_back({EntryLeft + CommandOffset, (lineCount_ - 2) * TwipsPerRow + AppendedTop, command});
    entryTop_ = lineCount_ * TwipsPerRow;
    drawn_.push_back({EntryLeft + ReplyOffset, (lineCount_ - 1) * TwipsPerRow + AppendedTop, reply});
}

// The entry box stays in the row below the ring, where the sixth pair left it.
void ConsoleRows::Redraw() {
    drawn_.clear();
    int y = RowTop;
    for (const std::string& row : Rows()) {
        drawn_.push_back({RowLeft, y, row});
        y += TwipsPerRow;
    }
}

void ConsoleRows::DrawPrompt() {
    drawn_.push_back({EntryLeft + PromptOffset, entryTop_ + RowTop, Prompt});
}

std::vector<std::string> ConsoleRows::Rows() const {
    const bool full = lineCount_ > MostRowsAppended;
    const int count = full ? RingRows : lineCount_;
    const int oldest = full ? lineCount_ % RingRows : 0;
    std::vector<std::string> rows;
    rows.reserve(RingRows);
    for (int k = 0; k < count; ++k)
        rows.push_back(terminalLines_[static_cast<std::size_t>((oldest + k) % RingRows)]);
    return rows;
}

std::optional<ConsolePair> ConsoleRows::PairAt(int y) const {
    const std::vector<std::string> rows = Rows();
    if (y < RowTop)
        return std::nullopt;
    const int row = (y - RowTop) / TwipsPerRow / RowsPerPair * RowsPerPair;
    const auto first = static_cast<std::size_t>(row);
    if (first >= rows.size())
        return std::nullopt;
    return ConsolePair{RowTop + row * TwipsPerRow, rows[first].substr(std::string_view(Prompt).size()),
                       rows[first + 1]};
}

} // namespace kavro
