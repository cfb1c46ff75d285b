#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

// Telnet as far as a serial port needs it: bytes in, characters and events out, and the other way round. It
// knows no socket, and whatever comes it keeps no more than a few dozen bytes of it.

/// What may follow the escape byte 255 of Telnet.
enum class TelnetVerb : unsigned char {
    SubnegotiationEnd = 240,
    Subnegotiation = 250,
    Will = 251,
    Wont = 252,
    Do = 253,
    Dont = 254,
    Escape = 255,
};

/// Options that matter here.
enum class TelnetOption : unsigned char { Binary = 0, SuppressGoAhead = 3, ComPort = 44 };

/// What the other side said beside characters.
struct TelnetEvent {
    TelnetVerb Verb = TelnetVerb::Will; ///< Will, Wont, Do, Dont or Subnegotiation
    unsigned char Option = 0;
    std::string Body; ///< of a sub-negotiation, behind the option
};

/// Takes Telnet apart, in whatever pieces it arrives.
class TelnetReader {
public:
    /// Appends the characters in `bytes` to `data` and what was said beside them to `events`. A
    /// sub-negotiation of more than 32 bytes is passed over; one that is not ended properly ends where the
    /// next command begins, and is passed over too.
    void Read(std::string_view bytes, std::string& data, std::vector<TelnetEvent>& events);

private:
    enum class State : std::uint8_t { Data, Command, Option, Body, BodyCommand };

    void Take(unsigned char byte, std::string& data, std::vector<TelnetEvent>& events);
    void TakeCommand(unsigned char byte);
    void TakeBody(char byte);

    State state_ = State::Data;
    TelnetVerb verb_ = TelnetVerb::Will; // whose option is awaited
    std::string body_;                   // of the sub-negotiation, its option first
    bool tooLong_ = false;
};

/// Text as it is sent: every byte 255 doubled.
std::string TelnetEscaped(std::string_view text);

/// A negotiation such as WILL BINARY, as it is sent.
std::string TelnetCommand(TelnetVerb verb, unsigned char option);
std::string TelnetCommand(TelnetVerb verb, TelnetOption option);

/// A sub-negotiation, as it is sent.
std::string TelnetSubnegotiation(TelnetOption option, std::string_view body);

} // namespace kavro
