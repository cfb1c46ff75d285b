#pragma once

#include <string>

namespace kavro {

/// One line on standard error that is written anew; nothing when standard error is not a terminal.
class TerminalLine {
public:
    TerminalLine();

    /// Takes the line off the terminal.
    ~TerminalLine();
    TerminalLine(const TerminalLine&) = delete;
    TerminalLine& operator=(const TerminalLine&) = delete;

    void Write(const std::string& text);

    /// Takes what stands there off the terminal, so that something else can be written.
    void Clear();

private:
    const bool isTerminal_;
    std::size_t shownWidth_ = 0;
};

} // namespace kavro
