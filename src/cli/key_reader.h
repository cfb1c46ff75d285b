#pragma once

#include <memory>
#include <optional>
#include <string>

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

    /// The next byte typed; nothing when none comes for so long. At the end of the input, as of a
    /// terminal that was closed, `EndKey`.
    std::optional<char> Next(int milliseconds);

private:
    struct Terminal; // what only the operating system's side needs
    std::unique_ptr<Terminal> terminal_;
};

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
