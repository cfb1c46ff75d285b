#include "ports/telnet.h"

namespace kavro {

namespace {

constexpr std::size_t LongestBody = 33; // the option and 32 bytes; no message about a port needs as many
constexpr auto Escape = static_cast<unsigned char>(TelnetVerb::Escape);

bool TakesOption(TelnetVerb verb) {
    return verb >= TelnetVerb::Will && verb <= TelnetVerb::Dont;
}

std::string Lead(TelnetVerb verb) {
    return {static_cast<char>(Escape), static_cast<char>(verb)};
}

} // namespace

void TelnetReader::Read(std::string_view bytes, std::string& data, std::vector<TelnetEvent>& events) {
    for (const char byte : bytes)
        Take(static_cast<unsigned char>(byte), data, events);
}

void TelnetReader::Take(unsigned char byte, std::string& data, std::vector<TelnetEvent>& events) {
    const auto verb = static_cast<TelnetVerb>(byte);
    const char character = static_cast<char>(byte);
    switch (state_) {
    case State::Data:
        if (byte == Escape)
            state_ = State::Command;
        else
            data += character;
        return;
    case State::Command:
        if (byte == Escape)
            data += character;
        TakeCommand(byte);
        return;
    case State::Option:
        events.push_back({verb_, byte, {}});
        state_ = State::Data;
        return;
    case State::Body:
        if (byte == Escape)
            state_ = State::BodyCommand;
        else
            TakeBody(character);
        return;
    case State::BodyCommand:
        if (verb == TelnetVerb::Escape) {
            TakeBody(character);
            state_ = State::Body;
            return;
        }
        if (verb == TelnetVerb::SubnegotiationEnd && !tooLong_ && !body_.empty())
            events.push_back(
                {TelnetVerb::Subnegotiation, static_cast<unsigned char>(body_[0]), body_.substr(1)});
        TakeCommand(byte);
        return;
    }
}

// The byte behind an escape byte. Commands without an option (NOP, a break, ...) need no answer.
void TelnetReader::TakeCommand(unsigned char byte) {
    verb_ = static_cast<TelnetVerb>(byte);
    state_ = TakesOption(verb_) ? State::Option : State::Data;
    if (verb_ != TelnetVerb::Subnegotiation)
        return;
    body_.clear();
    tooLong_ = false;
    state_ = State::Body;
}

void TelnetReader::TakeBody(char byte) {
    if (body_.size() < LongestBody)
        body_ += byte;
    else
        tooLong_ = true;
}

std::string TelnetEscaped(std::string_view text) {
    std::string escaped;
    for (const char character : text)
        escaped.append(static_cast<unsigned char>(character) == Escape ? 2 : 1, character);
    return escaped;
}

std::string TelnetCommand(TelnetVerb verb, unsigned char option) {
    return Lead(verb) + static_cast<char>(option);
}

std::string TelnetCommand(TelnetVerb verb, TelnetOption option) {
    return TelnetCommand(verb, static_cast<unsigned char>(option));
}

std::string TelnetSubnegotiation(TelnetOption option, std::string_view body) {
    return TelnetCommand(TelnetVerb::Subnegotiation, option) + TelnetEscaped(body) +
           Lead(TelnetVerb::SubnegotiationEnd);
}

} // namespace kavro
