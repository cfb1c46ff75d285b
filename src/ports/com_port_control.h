#pragma once

#include "ports/telnet.h"

#include <bitset>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// Commands of COM Port Control (RFC 2217), as a client sends them; a server's report has 100 more.
enum class ComPortCommand : unsigned char {
    Baud = 1,
    DataBits = 2,
    Parity = 3,
    StopBits = 4,
    Control = 5,
    LineStateMask = 10,
    ModemStateMask = 11,
    Purge = 12,
};

/// Added to a command in the server's report of it.
inline constexpr unsigned char ReportOffset = 100;

/// Number in network order, as it stands in the commands about rates.
std::string FourBytes(std::uint32_t number);

/// The number in four such bytes; nothing for another length.
std::optional<std::uint32_t> NumberInBytes(std::string_view bytes);

/// A command as it is sent.
std::string ComPortMessage(unsigned char command, std::string_view value);

/// The answers of one side of a Telnet connection to the other side's offers and requests: yes to what a
/// serial port needs, no to everything else, and at most one answer to each, so that no endless flood of
/// them makes one in return.
class TelnetOffers {
public:
    /// Answer to an event, empty when it needs none.
    std::string Answer(const TelnetEvent& event);

    /// Notes that this side has said `verb` of its own accord: what follows is an answer to it.
    std::string Say(TelnetVerb verb, TelnetOption option);

private:
    std::bitset<1024> said_; // by verb and option
};

/// A client's side of COM Port Control: what it sends, and what it makes of what the server says. Waits for
/// nothing: an answer is a hint, and a server may owe it for ever.
class ComPortClient {
public:
    enum class Agreement { Open, Agreed, Refused };

    /// What to send first.
    std::string Begin();

    /// Characters of the line in `bytes`, appended to `data`.
    void Receive(std::string_view bytes, std::string& data);

    /// What to send in answer to what has been received; empty when there is nothing.
    std::string TakeAnswers();

    /// Whether the server speaks COM Port Control; open until it has said so.
    Agreement Agreed() const { return agreement_; }

    /// What sets "`baud`,n,8,1" and asks for reports.
    std::string Request(std::uint32_t baud);

    /// Whether the server has reported on what was requested last, for good or ill.
    bool Reported() const { return reported_ || !Refusal().empty(); }

    /// What the server reports in place of what was requested last, such as "9600 baud"; empty when it has
    /// refused nothing.
    std::string Refusal() const { return refusal_; }

    /// What discards the characters that the server has received and not yet sent here.
    static std::string Purge();

private:
    void Note(const TelnetEvent& event);
    void NoteReport(const std::string& body);
    void NoteBaud(std::uint32_t baud);
    void AppendData(const std::string& data, std::string& to);

    TelnetReader reader_;
    TelnetOffers offers_;
    std::vector<TelnetEvent> events_;
    std::string answers_;
    Agreement agreement_ = Agreement::Open;
    bool afterReturn_ = false; // the last character was a carriage return
    std::uint32_t requested_ = 0;
    std::vector<std::uint32_t> owed_; // rates requested earlier without a report yet
    bool reported_ = false;
    std::string refusal_;
};

} // namespace kavro
