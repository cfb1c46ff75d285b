#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Height of a console row in twips (1/1440 inch), the unit of every position in the console.
inline constexpr int TwipsPerRow = 240;

/// A text on the console; `X` and `Y` are its top left corner in twips.
struct ConsoleText {
    int X = 0;
    int Y = 0;
    std::string Text;

    bool operator==(const ConsoleText&) const = default;
};

/// A command and its reply on the console; `Top` of their two rows in twips.
struct ConsolePair {
    int Top = 0;
    std::string Command;
    std::string Reply;
};

/// What the terminal's console shows: command and reply pairs that grow downwards, and from the seventh pair
/// on always the latest six, with the entry row below them.
class ConsoleRows {
public:
    /// Left edge of the entry box in twips; it never moves.
    static constexpr int EntryLeft = 180;

    /// A blank console with its prompt.
    ConsoleRows();

    /// Adds a command and its reply, which empties the entry box and may move it.
    void ShowTerminalLine(const std::string& command, const std::string& reply);

    /// Every text that is on the console now.
    const std::vector<ConsoleText>& Drawn() const { return drawn_; }

    /// Top of the entry box in twips.
    int EntryTop() const { return entryTop_; }

    /// Rows written so far; grows by 2 a command.
    std::int16_t LineCount() const { return lineCount_; }

    /// The command and its reply whose rows are at a height in twips; nothing where there are none.
    std::optional<ConsolePair> PairAt(int y) const;

    /// The rows shown, oldest first: ">" + command, then its reply.
    std::vector<std::string> Rows() const;

private:
    void Append(const std::string& command, const std::string& reply);
    void Redraw();
    void DrawPrompt();

    std::array<std::string, 14> terminalLines_{}; // 0 to 11 form the ring; 12 and 13 are spare
    std::int16_t lineCount_ = 0;
    int entryTop_ = 0;
    std::vector<ConsoleText> drawn_;
};

} // namespace kavro
