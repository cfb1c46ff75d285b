#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// Whether keys can be read and somebody sees what is printed: standard input and error are a terminal.
bool IsAtTerminal();

/// Reads single keys of the terminal that is standard input, without Enter and without showing them, as long
/// as it lives; Ctrl+C stays what it is. One at a time.
class KeyReader {
public:
    KeyReader();
    /// Gives the terminal back as it was.
    ~KeyReader();
    KeyReader(const KeyReader&) = delete;
    KeyReader& operator=(const KeyReader&) = delete;

    /// The next byte typed; nothing when none comes for so long, or a key that sends a sequence, as F1 and
    /// the arrows. At the end of the input, as of a terminal that was closed, `EndKey`.
    std::optional<char> Next(int milliseconds);
    /// Drops what else has been typed so far; whether `key` was among it, as when it is held down.
    bool DropTyped(char key = '\0');

private:
    std::optional<char> NextByte(int milliseconds);

    struct Terminal; // what only the operating system's side needs
    std::unique_ptr<Terminal> terminal_;
};

/// Whether these bytes behind an Escape are all that one key has sent.
bool IsWholeSequence(std::string_view behindEscape);

inline constexpr char EndKey = '\x04'; // Ctrl+D

/// Takes a line that is typed key by key and shown by `show`: Enter ends it, Backspace takes a character (of
/// UTF-8) back, Escape gives it up. Starts with `text`.
class TypedLine {
public:
    explicit TypedLine(std::string text) : Text(std::move(text)) {}

    /// True when the line has ended.
    bool Take(char key);

    std::string Text;
    bool GivenUp = false;
};

} // namespace kavro
