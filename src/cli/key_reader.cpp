#include "cli/key_reader.h"

#ifndef _WIN32
#include <csignal>

#include <poll.h>
#include <termios.h>
#include <unistd.h>
#endif

namespace kavro {

namespace {

constexpr char EscapeKey = '\x1B', BackspaceKey = '\x7F';
constexpr int SequenceMs = 50; // in which the rest of a key's sequence comes

bool ContinuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

} // namespace

bool IsWholeSequence(std::string_view behindEscape) {
    if (!behindEscape.starts_with('[') && !behindEscape.starts_with('O'))
        return !behindEscape.empty(); // Alt and a key
    if (behindEscape.starts_with("[["))
        return behindEscape.size() > 2; // F1 to F5 of the Linux console
    return behindEscape.size() > 1 && behindEscape.back() >= '@' && behindEscape.back() <= '~';
}

#ifndef _WIN32

struct KeyReader::Terminal {
    termios Before{};
    void (*BeforeHangup)(int) = SIG_DFL;
};

bool IsAtTerminal() {
    return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

KeyReader::KeyReader() : terminal_(std::make_unique<Terminal>()) {
    tcgetattr(STDIN_FILENO, &terminal_->Before);
    termios keys = terminal_->Before;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VSUSP] = _POSIX_VDISABLE; // stopped it could not put outputs back
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    terminal_->BeforeHangup = std::signal(SIGHUP, SIG_IGN); // a terminal that is closed ends the input
}

KeyReader::~KeyReader() {
    tcsetattr(STDIN_FILENO, TCSANOW, &terminal_->Before);
    std::signal(SIGHUP, terminal_->BeforeHangup);
}

std::optional<char> KeyReader::NextByte(int milliseconds) {
    pollfd wait = {STDIN_FILENO, POLLIN, 0};
    if (poll(&wait, 1, milliseconds) <= 0)
        return std::nullopt;
    char key = 0;
    return read(STDIN_FILENO, &key, 1) == 1 ? key : EndKey;
}

std::optional<char> KeyReader::Next(int milliseconds) {
    const auto key = NextByte(milliseconds);
    if (key != EscapeKey)
        return key;
    std::string sequence;
    while (!IsWholeSequence(sequence)) {
        const auto next = NextByte(SequenceMs);
        if (next == EndKey)
            return next;
        if (!next)
            return sequence.empty() ? key : std::nullopt;
        sequence += *next;
    }
    return std::nullopt;
}

bool KeyReader::DropTyped(char key) {
    bool again = false;
    for (auto next = Next(0); next && *next != EndKey; next = Next(0))
        again = again || *next == key;
    tcflush(STDIN_FILENO, TCIFLUSH);
    return again;
}

#else

struct KeyReader::Terminal {};

bool IsAtTerminal() {
    return false;
}

KeyReader::KeyReader() = default;
KeyReader::~KeyReader() = default;

std::optional<char> KeyReader::NextByte(int /*milliseconds*/) {
    return EndKey;
}

std::optional<char> KeyReader::Next(int milliseconds) {
    return NextByte(milliseconds);
}

bool KeyReader::DropTyped(char /*key*/) {
    return false;
}

#endif

bool TypedLine::Take(char key) {
    if (key == '\r' || key == '\n')
        return true;
    if (key == EscapeKey || key == EndKey) {
        GivenUp = true;
        return true;
    }
    if (key == BackspaceKey || key == '\b') {
        while (!Text.empty() && ContinuesCharacter(Text.back()))
            Text.pop_back();
        if (!Text.empty())
            Text.pop_back();
    } else if (static_cast<unsigned char>(key) >= ' ') {
        Text += key;
    }
    return false;
}

} // namespace kavro
