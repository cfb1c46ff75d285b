#pragma once

#include <string>
#include <string_view>

namespace kavro {

/// What a server says first. Servers that refuse a client often do so in plain words, and then close; one
/// that speaks Telnet begins with negotiations.
class ServerGreeting {
public:
    /// Notes what has been received since the connection was made, up to a few lines of it.
    void Take(std::string_view bytes);

    /// A command was sent: what comes now may be its reply, or noise.
    void NoteCommand() { asked_ = true; }

    /// Whether the first bytes are negotiations of Telnet, which a raw port never sends by itself: one before
    /// the first command, or two, which are no noise.
    bool SpeaksTelnet() const;

    /// Whether nothing but a short text has come, and it says that the port is in use.
    bool SaysInUse() const;

    /// The text for quoting, control characters as blanks; empty when it is none, or too long for a refusal.
    std::string Text() const;

private:
    std::string first_;
    bool asked_ = false;
    bool negotiates_ = false; // before the first command
};

} // namespace kavro
