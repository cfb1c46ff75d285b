#include "ports/com_port_control.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::size_t MostOwed = 8; // a server that reports late gets through them by and by

// Settings beside the rate, each a byte: what is asked for, and how a report of another value is told.
struct Setting {
    ComPortCommand Command;
    unsigned char Value;
    const char* Name;
};
constexpr Setting Settings[] = {
    {ComPortCommand::DataBits, 8, "other data bits"},
    {ComPortCommand::Parity, 1, "a parity"},
    {ComPortCommand::StopBits, 1, "other stop bits"},
};

constexpr char NoFlowControl = 1;
constexpr char DtrOn = 8;
constexpr char RtsOn = 11;
constexpr char NoReports = 0;
constexpr char PurgeReceived = 1;

constexpr TelnetOption Wanted[] = {TelnetOption::ComPort, TelnetOption::Binary,
                                   TelnetOption::SuppressGoAhead};

bool IsWanted(unsigned char option) {
    return std::ranges::find(Wanted, static_cast<TelnetOption>(option)) != std::end(Wanted);
}

std::string Message(ComPortCommand command, char value) {
    return ComPortMessage(static_cast<unsigned char>(command), {&value, 1});
}

std::size_t SaidIndex(TelnetVerb verb, unsigned char option) {
    const auto kind = static_cast<unsigned char>(verb) - static_cast<unsigned char>(TelnetVerb::Will);
    return static_cast<std::size_t>(kind) * 256 + option;
}

} // namespace

std::string FourBytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>((number >> shift) & 0xFF);
    return bytes;
}

std::optional<std::uint32_t> NumberInBytes(std::string_view bytes) {
    if (bytes.size() != 4)
        return std::nullopt;
    std::uint32_t number = 0;
    for (const char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

std::string ComPortMessage(unsigned char command, std::string_view value) {
    return TelnetSubnegotiation(TelnetOption::ComPort, static_cast<char>(command) + std::string(value));
}

std::string TelnetOffers::Answer(const TelnetEvent& event) {
    TelnetVerb yes = TelnetVerb::Do, no = TelnetVerb::Dont;
    if (event.Verb == TelnetVerb::Do || event.Verb == TelnetVerb::Dont) {
        yes = TelnetVerb::Will;
        no = TelnetVerb::Wont;
    }
    const bool offered = event.Verb == TelnetVerb::Do || event.Verb == TelnetVerb::Will;
    const TelnetVerb answer = offered && IsWanted(event.Option) ? yes : no;
    // Nothing to say to a "no" to what was never on, and nothing twice.
    const bool wasOn = said_[SaidIndex(yes, event.Option)];
    auto said = said_[SaidIndex(answer, event.Option)];
    if (said || (!offered && !wasOn))
        return {};
    said = true;
    return TelnetCommand(answer, event.Option);
}

std::string TelnetOffers::Say(TelnetVerb verb, TelnetOption option) {
    said_[SaidIndex(verb, static_cast<unsigned char>(option))] = true;
    return TelnetCommand(verb, option);
}

std::string ComPortClient::Begin() {
    std::string text;
    for (const TelnetOption option : Wanted)
        text += offers_.Say(TelnetVerb::Will, option);
    for (const TelnetOption option : {TelnetOption::Binary, TelnetOption::SuppressGoAhead})
        text += offers_.Say(TelnetVerb::Do, option);
    return text;
}

void ComPortClient::Receive(std::string_view bytes, std::string& data) {
    std::string received;
    events_.clear();
    reader_.Read(bytes, received, events_);
    for (const TelnetEvent& event : events_)
        Note(event);
    AppendData(received, data);
}

// A server that does not send all bytes as they are puts a NUL behind every carriage return; no module sends
// any.
void ComPortClient::AppendData(const std::string& data, std::string& to) {
    for (const char character : data) {
        if (character != '\0' || !afterReturn_)
            to += character;
        afterReturn_ = character == '\r';
    }
}

void ComPortClient::Note(const TelnetEvent& event) {
    if (event.Verb == TelnetVerb::Subnegotiation) {
        if (event.Option == static_cast<unsigned char>(TelnetOption::ComPort))
            NoteReport(event.Body);
        return;
    }
    answers_ += offers_.Answer(event);
    if (event.Option != static_cast<unsigned char>(TelnetOption::ComPort))
        return;
    // Some servers say WILL where the standard has them say DO.
    const bool yes = event.Verb == TelnetVerb::Do || event.Verb == TelnetVerb::Will;
    if (yes || event.Verb == TelnetVerb::Dont)
        agreement_ = yes ? Agreement::Agreed : Agreement::Refused;
}

std::string ComPortClient::TakeAnswers() {
    return std::exchange(answers_, {});
}

std::string ComPortClient::Request(std::uint32_t baud) {
    if (requested_ != 0 && !reported_ && refusal_.empty())
        owed_.push_back(requested_);
    if (owed_.size() > MostOwed)
        owed_.erase(owed_.begin());
    requested_ = baud;
    reported_ = false;
    refusal_.clear();
    std::string text;
    // Some adapters take their power from these lines. Nobody waits for what the server says to it.
    for (const char control : {NoFlowControl, DtrOn, RtsOn})
        text += Message(ComPortCommand::Control, control);
    for (const ComPortCommand mask : {ComPortCommand::LineStateMask, ComPortCommand::ModemStateMask})
        text += Message(mask, NoReports);
    for (const Setting& setting : Settings)
        text += Message(setting.Command, static_cast<char>(setting.Value));
    // Last, so that its report comes behind the others.
    return text + ComPortMessage(static_cast<unsigned char>(ComPortCommand::Baud), FourBytes(baud));
}

void ComPortClient::NoteReport(const std::string& body) {
    if (body.empty() || requested_ == 0)
        return;
    const auto command = static_cast<unsigned char>(static_cast<unsigned char>(body[0]) - ReportOffset);
    if (command == static_cast<unsigned char>(ComPortCommand::Baud))
        if (const auto baud = NumberInBytes(std::string_view(body).substr(1)))
            NoteBaud(*baud);
    for (const Setting& setting : Settings)
        if (command == static_cast<unsigned char>(setting.Command) && body.size() == 2 &&
            static_cast<unsigned char>(body[1]) != setting.Value)
            refusal_ = setting.Name;
}

// A late report of a rate that was requested before tells nothing of the one requested now.
void ComPortClient::NoteBaud(std::uint32_t baud) {
    if (baud == requested_) {
        reported_ = true;
        owed_.clear();
        return;
    }
    const auto late = std::ranges::find(owed_, baud);
    if (late != owed_.end())
        owed_.erase(owed_.begin(), late + 1);
    else if (!reported_)
        refusal_ = std::to_string(baud) + " baud";
}

std::string ComPortClient::Purge() {
    return Message(ComPortCommand::Purge, PurgeReceived);
}

} // namespace kavro
