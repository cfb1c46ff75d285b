#include "cli/terminal_line.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace kavro {

namespace {

bool StandardErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

TerminalLine::TerminalLine() : isTerminal_(StandardErrorIsTerminal()) {}

TerminalLine::~TerminalLine() {
    Clear();
}

void TerminalLine::Clear() {
    Write("");
    if (isTerminal_)
        std::fputc('\r', stderr);
}

// Blanks take off what a longer text before has left.
void TerminalLine::Write(const std::string& text) {
    if (!isTerminal_)
        return;
    const std::string padded =
        text + std::string(shownWidth_ > text.size() ? shownWidth_ - text.size() : 0, ' ');
    std::fprintf(stderr, "\r%s", padded.c_str());
    std::fflush(stderr);
    shownWidth_ = text.size();
}

} // namespace kavro
